#pragma once

#include <cstddef>
#include <cstdint>

namespace qelta {

/// Writes the low `size` bytes of a number, lowest first.
inline void PutNumber(unsigned char* to, std::uint64_t number, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) to[i] = static_cast<unsigned char>(number >> 8 * i);
}

inline std::uint64_t GetNumber(const unsigned char* from, std::size_t size) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < size; ++i) number |= std::uint64_t{from[i]} << 8 * i;
  return number;
}

}  // namespace qelta
