#include "QeltaPatternText.h"

#include <FED_Failure.h>
#include <FED_IntSetIntvl.h>
#include <FED_Message.h>
#include <QeltaStringUtil.h>

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "QeltaFieldText.h"
#include "QeltaNames.h"
#include "QeltaUtf8.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

struct Item {
  std::string text;
  bool isQuoted;
};

[[noreturn]] void ThrowUsage(const char* messageId, const std::string& text) {
  FED_Failure::Throw(messageId, "|%P|QeltaIo|QeltaPatternText", "%s", text.c_str());
}

bool IsText(Key::ResultIndex field) {
  return Key::RD_NAME_TYPE_ITEMS[field].type == Key::STRING_FIELD;
}

const std::string& NameOf(Key::ResultIndex field) { return Key::RD_NAME_TYPE_ITEMS[field].name; }

// Takes one item of a list, and leaves `begin` at the comma or semicolon behind it, or at the end.
Item TakeItem(const std::string& text, std::size_t& begin) {
  begin = std::min(text.find_first_not_of(" \t", begin), text.size());
  if (text[begin] != '\'') {
    const std::size_t end = std::min(text.find_first_of(",;", begin), text.size());
    const std::string item = text.substr(begin, end - begin);
    begin = end;
    return {QeltaStringUtil::Trim(item), false};
  }
  Item item{TakeQuoted(text, ++begin), true};
  begin = std::min(text.find_first_not_of(" \t", begin), text.size());
  if (begin < text.size() && text[begin] != ',' && text[begin] != ';') {
    ThrowUsage("310000000711", "Something stands behind a closing quote in '" + text + "'.");
  }
  return item;
}

// `*` stands for any letters, `?` for any one.
bool MatchesGlob(const std::string& text, const std::string& glob) {
  std::size_t i = 0, g = 0, star = std::string::npos, resume = 0;
  while (i < text.size()) {
    if (g < glob.size() && glob[g] == '*') {
      star = g++;
      resume = i;
    } else if (g < glob.size() && (glob[g] == '?' || glob[g] == text[i])) {
      i = glob[g] == '?' ? SkipCharacters(text, i, 1) : i + 1;
      ++g;
    } else if (star != std::string::npos) {
      g = star + 1;
      i = resume = SkipCharacters(text, resume, 1);
    } else {
      return false;
    }
  }
  return glob.find_first_not_of('*', g) == std::string::npos;
}

void InsertRange(FED_IntSetIntvl<int>& numbers, Key::ResultIndex field, const std::string& text,
                 std::size_t dots) {
  const std::string low = text.substr(0, dots), high = text.substr(dots + 2);
  if (low.empty() && high.empty()) {
    ThrowUsage("310000000712", "'..' is no range; " + NameOf(field) + "=? asks for any value.");
  }
  const int first = low.empty() ? std::numeric_limits<int>::min() : ParseFieldBound(field, low);
  const int last = high.empty() ? std::numeric_limits<int>::max() : ParseFieldBound(field, high);
  if (first > last) {
    ThrowUsage("310000000706", "The range " + NameOf(field) + "=" + text + " is empty.");
  }
  numbers.Insert(first, last);
}

void InsertItem(FED_IntSetIntvl<int>& numbers, Key::ResultIndex field, const std::string& text) {
  const std::size_t dots = text.find("..");
  if (field == Key::ONF && text.substr(0, 1) == "@") {
    const QeltaKindRange range = ParseCategory(text.substr(1));
    numbers.Insert(range.first, range.last);
  } else if (dots != std::string::npos) {
    InsertRange(numbers, field, text, dots);
  } else {
    numbers.Insert(ParseFieldValue(field, text));
  }
}

using Group = std::pair<bool, int>;

Group GroupOf(const Key& key, std::optional<Key::ResultIndex> field) {
  const bool isGiven = field && key.Has(*field);
  return {isGiven, isGiven ? key.GetInteger(*field) : 0};
}

}  // namespace

struct QeltaPatternText::Condition {
  Field field;
  bool isGlob;
  std::vector<Item> items;

  /// The one value that is not quoted; empty when there is none.
  std::string Word() const {
    return items.size() == 1 && !items[0].isQuoted ? items[0].text : std::string();
  }
};

QeltaPatternText::QeltaPatternText(const std::vector<std::string>& texts) : QeltaPatternText() {
  for (const std::string& text : texts) Add(text);
}

void QeltaPatternText::Add(const std::string& text) {
  for (std::size_t begin = 0; begin <= text.size(); ++begin) {
    const std::size_t sign = text.find_first_of("=~;", begin);
    if (sign == std::string::npos || text[sign] == ';') {
      ThrowUsage("310000000707", "'" + text + "' is no selection; the form is FIELD=VALUE.");
    }
    const std::string name = QeltaStringUtil::Trim(text.substr(begin, sign - begin));
    Condition condition{ParseFieldName(name), text[sign] == '~', {}};
    begin = sign;
    do {
      condition.items.push_back(TakeItem(text, ++begin));
    } while (begin < text.size() && text[begin] == ',');
    Add(condition);
  }
}

void QeltaPatternText::Add(const Condition& condition) {
  const std::string word = condition.Word();
  if (condition.isGlob || IsText(condition.field)) {
    if (!condition.isGlob && (word == "?" || word == "!")) {
      PlainFor(condition.field).SetMatchIfPresent(condition.field, word == "?");
    } else {
      AddTexts(condition);
    }
  } else if (word == "?" || word == "!") {
    PlainFor(condition.field).SetMatchIfPresent(condition.field, word == "?");
  } else if (!AddExtreme(condition)) {
    AddNumbers(condition);
  }
}

void QeltaPatternText::AddNumbers(const Condition& condition) {
  const Field field = condition.field;
  const std::string word = condition.Word();
  FED_IntSetIntvl<int> numbers;
  for (const Item& item : condition.items) InsertItem(numbers, field, item.text);
  if (field == Key::ONF && word.substr(0, 1) == "@") {
    PlainFor(field).SetMatchCategory(ParseCategory(word.substr(1)).category);
  } else if (numbers.Size() == 1) {
    PlainFor(field).SetMatchExact(field, numbers.begin()->lo);
  } else {
    m_Tests.emplace_back([field, numbers = std::move(numbers)](const Key& key) {
      return key.Has(field) && numbers.Contains(key.GetInteger(field));
    });
  }
}

// A word that means something for a number, but nothing for a text.
void QeltaPatternText::RequireTexts(const Condition& condition) {
  for (const auto& [text, isQuoted] : condition.items) {
    const std::string which = text.substr(0, text.find('/'));
    const bool isWord = text == "?" || text == "!" || text.find("..") != std::string::npos ||
                        IsSameName(which, "max") || IsSameName(which, "min");
    if (isQuoted || !(text.empty() || (isWord && !condition.isGlob))) continue;
    const char* const name = NameOf(condition.field).c_str();
    const char sign = condition.isGlob ? '~' : '=';
    ThrowUsage("310000001004",
               FED_MESSAGE("%s%c%s means nothing here: %s holds texts. For this very text, write "
                           "%s%c'%s'.",
                           name, sign, text.c_str(), name, name, sign, text.c_str()));
  }
}

void QeltaPatternText::AddTexts(const Condition& condition) {
  const Field field = condition.field;
  if (!IsText(field)) {
    ThrowUsage("310000000708", NameOf(field) + " holds a number, which ~ cannot test; write " +
                                   NameOf(field) + "=10..20 or " + NameOf(field) + "=1,3,7.");
  }
  RequireTexts(condition);
  if (!condition.isGlob && condition.items.size() == 1) {
    PlainFor(field).SetMatchExact(field, condition.items[0].text);
    return;
  }
  m_Tests.emplace_back([field, isGlob = condition.isGlob, items = condition.items](const Key& key) {
    const std::string text = key.Has(field) ? key.GetString(field) : std::string();
    return key.Has(field) && std::any_of(items.begin(), items.end(), [&](const Item& item) {
             return isGlob ? MatchesGlob(text, item.text) : text == item.text;
           });
  });
}

// False when the condition asks for no extreme.
bool QeltaPatternText::AddExtreme(const Condition& condition) {
  const std::string word = condition.Word();
  const std::size_t slash = std::min(word.find('/'), word.size());
  const std::string which = word.substr(0, slash);
  if (!IsSameName(which, "max") && !IsSameName(which, "min")) return false;
  std::optional<Field> group;
  if (slash < word.size()) group = ParseFieldName(word.substr(slash + 1));
  m_Extremes.push_back({condition.field, IsSameName(which, "max"), group});
  return true;
}

// A pattern has one test for each field.
FED_DataDescriptorPattern& QeltaPatternText::PlainFor(Field field) {
  if (!m_PlainFields.insert(field).second) {
    m_Plain.emplace_back();
    m_PlainFields = {field};
  }
  return m_Plain.back();
}

std::vector<Key> QeltaPatternText::SelectPlain(std::vector<Key> keys) const {
  for (const FED_DataDescriptorPattern& pattern : m_Plain) keys = pattern.Match(keys);
  const auto isRejected = [this](const Key& key) {
    return !std::all_of(m_Tests.begin(), m_Tests.end(),
                        [&](const auto& test) { return test(key); });
  };
  keys.erase(std::remove_if(keys.begin(), keys.end(), isRejected), keys.end());
  return keys;
}

bool QeltaPatternText::Accepts(const Key& key) const { return !SelectPlain({key}).empty(); }

std::vector<Key> QeltaPatternText::Select(std::vector<Key> keys) const {
  keys = SelectPlain(std::move(keys));
  for (const Extreme& extreme : m_Extremes) {
    std::map<Group, int> best;
    for (const Key& key : keys) {
      if (!key.Has(extreme.field)) continue;
      const int value = key.GetInteger(extreme.field);
      int& known = best.try_emplace(GroupOf(key, extreme.group), value).first->second;
      known = extreme.isHighest ? std::max(known, value) : std::min(known, value);
    }
    const auto isLess = [&](const Key& key) {
      return !key.Has(extreme.field) ||
             key.GetInteger(extreme.field) != best.at(GroupOf(key, extreme.group));
    };
    keys.erase(std::remove_if(keys.begin(), keys.end(), isLess), keys.end());
  }
  return keys;
}

std::vector<Key> QeltaPatternText::Select(const FED_Database& database) const {
  return Select(database.FindBlocks(m_Plain.front()));
}

}  // namespace qelta
