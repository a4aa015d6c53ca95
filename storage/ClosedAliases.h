#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "FED_DataBlockSet.h"
#include "FED_DataDescriptor.h"

namespace qelta {

/// Remembers which descriptors were names of the same block when a save closed it, so that all of
/// them lead to the block again when it is reopened.
class ClosedAliases {
 public:
  /// The descriptors registered with the same position as `key`, itself included, as duplicates;
  /// empty when there is no other. `closings` is a number that has changed whenever blocks were
  /// closed since the last call; the call then costs one pass over all aliases.
  std::vector<FED_DataDescriptor> GroupOf(const FED_DataBlockSet& blocks,
                                          const FED_DataDescriptor& key, std::uint64_t closings);

 private:
  void Update(const FED_DataBlockSet& blocks);

  std::uint64_t m_Closings = 0;
  std::map<int, std::vector<FED_DataDescriptor>> m_Groups;
};

}  // namespace qelta
