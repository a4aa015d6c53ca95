#include "QeltaKeyValues.h"

#include <algorithm>

#include "QeltaNames.h"

namespace qelta {
namespace {

std::string DescribeTexts(const std::vector<FED_DataDescriptor>& keys,
                          FED_DataDescriptor::ResultIndex field) {
  std::vector<std::string> texts;
  for (const FED_DataDescriptor& key : keys) {
    if (!key.Has(field)) continue;
    const std::string text = key.GetString(field);
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
  }
  return Join(texts);
}

}  // namespace

std::string ToText(const FED_IntSetIntvl<int>& set) {
  std::vector<std::string> parts;
  for (const auto& interval : set) {
    parts.push_back(std::to_string(interval.lo) +
                    (interval.lo == interval.hi ? "" : ".." + std::to_string(interval.hi)));
  }
  return Join(parts);
}

std::string DescribeValues(const std::vector<FED_DataDescriptor>& keys,
                           FED_DataDescriptor::ResultIndex field) {
  if (FED_DataDescriptor::RD_NAME_TYPE_ITEMS[field].type == FED_DataDescriptor::STRING_FIELD) {
    return DescribeTexts(keys, field);
  }
  FED_IntSetIntvl<int> values;
  for (const FED_DataDescriptor& key : keys) {
    if (key.Has(field)) values.Insert(key.GetInteger(field));
  }
  return ToText(values);
}

}  // namespace qelta
