#pragma once

#include <cstddef>
#include <memory>

namespace qelta::bench {

/// Records in one array behind virtual operations: what is left when a block does nothing but copy.
class VirtualTable {
 public:
  virtual ~VirtualTable() = default;
  virtual void Get(std::size_t index, unsigned char* record) const = 0;
  virtual void Set(std::size_t index, const unsigned char* record) = 0;

 protected:
  VirtualTable() = default;
  VirtualTable(const VirtualTable&) = default;
  VirtualTable& operator=(const VirtualTable&) = default;
};

/// `Size` is 24 or 100.
template <std::size_t Size>
std::unique_ptr<VirtualTable> MakeVirtualTable(std::size_t count);

}  // namespace qelta::bench
