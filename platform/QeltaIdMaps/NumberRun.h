#pragma once

#include <cstdint>

namespace qelta {

// The pairs from -> to, from + 1 -> to + 1, ... ; behind 2^32 - 1, `to` goes on with 0, `from` may
// not.
struct NumberRun {
  std::uint32_t from;
  std::uint32_t to;
  std::uint32_t length;

  std::uint32_t LastFrom() const { return from + (length - 1); }

  // For one whose `from` is greater.
  bool IsContinuedBy(const NumberRun& next) const {
    return from + length == next.from && to + length == next.to;
  }
};

}  // namespace qelta
