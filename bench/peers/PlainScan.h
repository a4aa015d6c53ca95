#pragma once

#include <FED_DataDescriptor.h>

#include <cstdint>
#include <vector>

#include "KeyBytes.h"

namespace qelta::bench {

/// The keys of an array in which an integer field is specified and has the value.
inline std::vector<FED_DataDescriptor> PlainScan(const std::vector<FED_DataDescriptor>& keys,
                                                 FED_DataDescriptor::ResultIndex field,
                                                 std::int32_t value) {
  const auto slot = static_cast<std::size_t>(field);
  std::vector<FED_DataDescriptor> found;
  for (const FED_DataDescriptor& key : keys) {
    const KeyBytes bytes(key);
    const bool specified = (bytes.Mask() >> slot & 1) != 0;
    if (specified && bytes.Slot(slot) == static_cast<std::uint32_t>(value)) found.push_back(key);
  }
  return found;
}

}  // namespace qelta::bench
