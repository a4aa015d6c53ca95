#include "ClosedAliases.h"

#include <algorithm>

namespace qelta {

std::vector<FED_DataDescriptor> ClosedAliases::GroupOf(const FED_DataBlockSet& blocks,
                                                       const FED_DataDescriptor& key,
                                                       std::uint64_t closings) {
  if (m_Closings != closings) Update(blocks);
  m_Closings = closings;
  const int position = blocks.FindPosition(key);
  const auto found = m_Groups.find(position);
  if (found == m_Groups.end()) return {};
  std::vector<FED_DataDescriptor> group(found->second);
  // Names that were deleted or given to another block since then no longer belong to the group.
  const auto moved = [&](const FED_DataDescriptor& name) {
    return blocks.FindPosition(name) != position;
  };
  group.erase(std::remove_if(group.begin(), group.end(), moved), group.end());
  return group;
}

void ClosedAliases::Update(const FED_DataBlockSet& blocks) {
  std::vector<const FED_DataDescriptor*> aliases;
  blocks.GetAliases(aliases);
  m_Groups.clear();
  for (const FED_DataDescriptor* name : aliases) {
    m_Groups[blocks.FindPosition(*name)].push_back(name->Duplicate());
  }
}

}  // namespace qelta
