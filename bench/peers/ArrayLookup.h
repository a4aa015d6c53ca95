#pragma once

#include <cstddef>
#include <vector>

namespace qelta::bench {

/// The least that a lookup behind a call can do: check a position and read an array.
class ArrayLookup {
 public:
  explicit ArrayLookup(std::size_t count) : m_Blocks(count, this) {}

  /// Null when there is no such position.
  const void* Find(std::size_t position) const;

 private:
  std::vector<const void*> m_Blocks;
};

}  // namespace qelta::bench
