#pragma once

#include <cstddef>
#include <cstring>

namespace qelta::bench {

/// Copies `count` values of a size that the compiler knows between places with fixed distances.
template <std::size_t Size>
void StridedCopy(unsigned char* to, std::size_t toStep, const unsigned char* from,
                 std::size_t fromStep, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    std::memcpy(to + i * toStep, from + i * fromStep, Size);
  }
}

}  // namespace qelta::bench
