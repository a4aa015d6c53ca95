#include "QeltaPatternText.h"

#include <FED_Failure.h>
#include <FED_Message.h>
#include <FED_OnfInfoPool.h>
#include <QeltaStringUtil.h>

#include <optional>
#include <set>

#include "QeltaNames.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

[[noreturn]] void ThrowUsage(const char* messageId, const std::string& text) {
  FED_Failure::Throw(messageId, "|%P|QeltaIo|QeltaPatternText", "%s", text.c_str());
}

std::optional<int> ToInteger(const std::string& text) {
  int value = 0;
  if (QeltaStringUtil::ToInt(text, value) != STATUS_OK) return std::nullopt;
  return value;
}

const Key::NameAndType& Info(Key::ResultIndex field) { return Key::RD_NAME_TYPE_ITEMS[field]; }

Key::ResultIndex FindField(const std::string& name) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    names.push_back(Key::RD_NAME_TYPE_ITEMS[i].name);
    if (IsSameName(names.back(), name)) return Key::CastIndex(i);
  }
  ThrowUsage("310000000701", "There is no field '" + name + "'." + Suggest(name, names));
}

std::optional<int> FindKind(const std::string& name, std::vector<std::string>& names) {
  for (const FED_OnfId id : FED_OnfInfoPool::GetAllOnfIds()) {
    names.push_back(FED_OnfInfoPool::GetOnfInfo(id).name);
    if (IsSameName(names.back(), name)) return id;
  }
  return std::nullopt;
}

FED_OnfCategoryId FindCategory(const std::string& name) {
  std::vector<std::string> names;
  for (const FED_OnfCategoryInfo& category : FED_OnfInfoPool::GetAllCategories()) {
    names.push_back(category.name);
    if (IsSameName(category.name, name)) return category.category;
  }
  ThrowUsage("310000000702", "There is no category '" + name + "'." + Suggest(name, names));
}

int RequireKind(const std::string& text) {
  const std::optional<int> number = ToInteger(text);
  if (number && FED_OnfInfoPool::ExistsOnfBlock(*number)) return *number;
  std::vector<std::string> names;
  if (const std::optional<int> kind = FindKind(text, names)) return *kind;
  ThrowUsage("310000000703", "There is no block kind '" + text + "'." + Suggest(text, names));
}

int RequireValue(Key::ResultIndex field, const std::string& text) {
  if (field == Key::ONF) return RequireKind(text);
  const Key::NameAndType& info = Info(field);
  const std::optional<int> value = ToInteger(text);
  if (!value) {
    ThrowUsage("310000000704",
               FED_MESSAGE("%s takes an integer, not '%s'. The forms are N, N.., ..N, max, min, ? "
                           "(present) and ! (missing).",
                           info.name.c_str(), text.c_str()));
  }
  if (*value < info.lowest || *value > info.highest) {
    ThrowUsage("310000000705", FED_MESSAGE("%s takes values from %d to %d, not %d.",
                                           info.name.c_str(), info.lowest, info.highest, *value));
  }
  return *value;
}

// A bound of the kinds need not be the number of one.
int RequireBound(Key::ResultIndex field, const std::string& text) {
  const std::optional<int> number = ToInteger(text);
  return field == Key::ONF && number ? *number : RequireValue(field, text);
}

void SetInteger(FED_DataDescriptorPattern& pattern, Key::ResultIndex field,
                const std::string& text) {
  const std::size_t dots = text.find("..");
  if (IsSameName(text, "max")) {
    pattern.SetMatchHighest(field);
  } else if (IsSameName(text, "min")) {
    pattern.SetMatchLowest(field);
  } else if (field == Key::ONF && text.substr(0, 1) == "@") {
    pattern.SetMatchCategory(FindCategory(text.substr(1)));
  } else if (dots == std::string::npos) {
    pattern.SetMatchExact(field, RequireValue(field, text));
  } else if (dots == 0) {
    pattern.SetMatchLessEqual(field, RequireBound(field, text.substr(2)));
  } else if (dots + 2 == text.size()) {
    pattern.SetMatchGreaterEqual(field, RequireBound(field, text.substr(0, dots)));
  } else {
    ThrowUsage("310000000706", FED_MESSAGE("%s=%s has two bounds; one is possible: %s=N.. or "
                                           "%s=..N.",
                                           Info(field).name.c_str(), text.c_str(),
                                           Info(field).name.c_str(), Info(field).name.c_str()));
  }
}

void SetEntry(FED_DataDescriptorPattern& pattern, Key::ResultIndex field, const std::string& text) {
  if (text == "?" || text == "!") {
    pattern.SetMatchIfPresent(field, text == "?");
  } else if (Info(field).type == Key::STRING_FIELD) {
    pattern.SetMatchExact(field, text);
  } else {
    SetInteger(pattern, field, text);
  }
}

}  // namespace

FED_DataDescriptorPattern ParsePatternTexts(const std::vector<std::string>& texts) {
  FED_DataDescriptorPattern pattern;
  std::set<Key::ResultIndex> fields;
  for (const std::string& text : texts) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos) {
      ThrowUsage("310000000707", "'" + text + "' is no selection; the form is FIELD=VALUE.");
    }
    const Key::ResultIndex field = FindField(text.substr(0, sign));
    if (!fields.insert(field).second) {
      ThrowUsage("310000000708", Info(field).name + " is selected twice.");
    }
    SetEntry(pattern, field, text.substr(sign + 1));
  }
  return pattern;
}

}  // namespace qelta
