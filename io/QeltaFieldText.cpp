#include "QeltaFieldText.h"

#include <FED_Failure.h>
#include <FED_Message.h>
#include <FED_OnfInfoPool.h>
#include <QeltaStringUtil.h>

#include <algorithm>
#include <optional>
#include <set>

#include "QeltaNames.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

[[noreturn]] void ThrowUsage(const char* messageId, const std::string& text) {
  FED_Failure::Throw(messageId, "|%P|QeltaIo|QeltaFieldText", "%s", text.c_str());
}

std::optional<int> ToInteger(const std::string& text) {
  int value = 0;
  if (QeltaStringUtil::ToInt(text, value) != STATUS_OK) return std::nullopt;
  return value;
}

const Key::NameAndType& Info(Key::ResultIndex field) { return Key::RD_NAME_TYPE_ITEMS[field]; }

}  // namespace

Key::ResultIndex ParseFieldName(const std::string& name) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    names.push_back(Key::RD_NAME_TYPE_ITEMS[i].name);
    if (IsSameName(names.back(), name)) return Key::CastIndex(i);
  }
  ThrowUsage("310000000701", "There is no field '" + name + "'." + Suggest(name, names));
}

FED_OnfId ParseKind(const std::string& text) {
  const std::optional<int> number = ToInteger(text);
  if (number && FED_OnfInfoPool::ExistsOnfBlock(*number)) return static_cast<FED_OnfId>(*number);
  std::vector<std::string> names;
  for (const FED_OnfId id : FED_OnfInfoPool::GetAllOnfIds()) {
    names.push_back(FED_OnfInfoPool::GetOnfInfo(id).name);
    if (IsSameName(names.back(), text)) return id;
  }
  ThrowUsage("310000000703", "There is no block kind '" + text + "'." + Suggest(text, names));
}

QeltaKindRange ParseCategory(const std::string& name) {
  std::vector<std::string> names;
  for (const FED_OnfCategoryInfo& category : FED_OnfInfoPool::GetAllCategories()) {
    names.push_back(category.name);
    if (IsSameName(category.name, name)) return {category.category, category.first, category.last};
  }
  ThrowUsage("310000000702", "There is no category '" + name + "'." + Suggest(name, names));
}

int ParseFieldValue(Key::ResultIndex field, const std::string& text) {
  if (field == Key::ONF) return ParseKind(text);
  const Key::NameAndType& info = Info(field);
  const std::optional<int> value = ToInteger(text);
  if (!value) {
    ThrowUsage("310000000704",
               FED_MESSAGE("%s takes an integer, not '%s'.", info.name.c_str(), text.c_str()));
  }
  if (*value < info.lowest || *value > info.highest) {
    ThrowUsage("310000000705", FED_MESSAGE("%s takes values from %d to %d, not %d.",
                                           info.name.c_str(), info.lowest, info.highest, *value));
  }
  return *value;
}

int ParseFieldBound(Key::ResultIndex field, const std::string& text) {
  const std::optional<int> number = ToInteger(text);
  return field == Key::ONF && number ? *number : ParseFieldValue(field, text);
}

std::string TakeQuoted(const std::string& text, std::size_t& begin) {
  std::string quoted;
  for (;; ++begin) {
    const std::size_t quote = text.find('\'', begin);
    if (quote == std::string::npos) {
      ThrowUsage("310000000710", "A quote is not closed in '" + text + "'.");
    }
    quoted += text.substr(begin, quote - begin);
    begin = quote + 1;
    if (text[begin] != '\'') return quoted;
    quoted += '\'';
  }
}

namespace {

// The value behind the sign, without quotes; nothing for an exclamation mark.
std::optional<std::string> TakeValue(const std::string& text, std::size_t sign) {
  std::size_t begin = std::min(text.find_first_not_of(" \t", sign + 1), text.size());
  const std::string value = text.substr(sign + 1);
  if (text[begin] == '\'') {
    std::string quoted = TakeQuoted(text, ++begin);
    if (text.find_first_not_of(" \t", begin) == std::string::npos) return quoted;
    ThrowUsage("310000001002", "Something stands behind a closing quote in '" + text + "'.");
  }
  if (value == "!") return std::nullopt;
  if (!value.empty()) return value;
  ThrowUsage("310000001003", "'" + text +
                                 "' has no value; write ! behind it to leave the field "
                                 "out, or '' for an empty text.");
}

}  // namespace

QeltaKeyChanges::QeltaKeyChanges(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos) {
      ThrowUsage("310000000709", "'" + text + "' sets no field; the form is FIELD=VALUE.");
    }
    const Key::ResultIndex field = ParseFieldName(text.substr(0, sign));
    const std::optional<std::string> value = TakeValue(text, sign);
    if (!value) {
      m_Removed.push_back(field);
    } else if (Info(field).type == Key::STRING_FIELD) {
      m_Values.SetString(field, *value);
    } else {
      m_Values.SetInteger(field, ParseFieldValue(field, *value));
    }
  }
}

void QeltaKeyChanges::ApplyTo(Key& key) const {
  key.AssignSpecifiedValues(m_Values);
  for (const Key::ResultIndex field : m_Removed) key.Unset(field);
}

std::vector<Key> QeltaKeyChanges::ApplyToAll(const std::vector<Key>& keys) const {
  std::vector<Key> changed;
  std::set<Key> used;
  for (const Key& key : keys) {
    changed.push_back(key.Duplicate());
    ApplyTo(changed.back());
    if (used.insert(changed.back()).second) continue;
    FED_Failure::Throw(kCollisionId, "|%P|QeltaIo|QeltaKeyChanges",
                       "With these changes of keys %s and another block would both become %s; "
                       "select fewer blocks or change other fields.",
                       key.ToString().c_str(), changed.back().ToString().c_str());
  }
  return changed;
}

}  // namespace qelta
