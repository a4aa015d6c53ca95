#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "FED_IntSetIntvl.h"

// Integer sets as blocks keep them: flat lists of their members.
namespace qelta {

/// The set of `values`, whatever their order and repeats.
inline FED_IntSetIntvl<int> MakeIntSet(const int* values, std::size_t count) {
  std::vector<int> sorted(values, values + count);
  std::sort(sorted.begin(), sorted.end());
  FED_IntSetIntvl<int> set;
  for (const int value : sorted) set.Insert(value);
  return set;
}

/// Writes the members in ascending order to `out`, which has room for `set.Size()`; returns their
/// number.
inline std::uint64_t ListMembers(const FED_IntSetIntvl<int>& set, int* out) {
  std::uint64_t count = 0;
  for (const auto& interval : set) {
    // 64 bits: an interval may end at the highest int.
    for (std::int64_t value = interval.lo; value <= interval.hi; ++value) {
      out[count++] = static_cast<int>(value);
    }
  }
  return count;
}

}  // namespace qelta
