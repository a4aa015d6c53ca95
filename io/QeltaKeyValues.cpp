#include "QeltaKeyValues.h"

#include <algorithm>

namespace qelta {
namespace {

void Append(std::string& list, const std::string& item) {
  if (!list.empty()) list += ", ";
  list += item;
}

std::string DescribeTexts(const std::vector<FED_DataDescriptor>& keys,
                          FED_DataDescriptor::ResultIndex field) {
  std::vector<std::string> texts;
  std::string list;
  for (const FED_DataDescriptor& key : keys) {
    if (!key.Has(field)) continue;
    const std::string text = key.GetString(field);
    if (std::find(texts.begin(), texts.end(), text) != texts.end()) continue;
    texts.push_back(text);
    Append(list, text);
  }
  return list;
}

}  // namespace

std::string ToText(const FED_IntSetIntvl<int>& set) {
  std::string list;
  for (const auto& interval : set) {
    Append(list, std::to_string(interval.lo) +
                     (interval.lo == interval.hi ? "" : ".." + std::to_string(interval.hi)));
  }
  return list;
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
