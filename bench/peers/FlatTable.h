#pragma once

#include <cstddef>
#include <cstring>

namespace qelta::bench {

/// Records of a size that the compiler knows in one array, and a buffer for one record. A view: who
/// makes it owns both.
template <std::size_t Size>
class FlatTable {
 public:
  FlatTable(unsigned char* bytes, unsigned char* record) : m_Bytes(bytes), m_Record(record) {}

  void Get(std::size_t index) const { std::memcpy(m_Record, m_Bytes + index * Size, Size); }
  void Set(std::size_t index) const { std::memcpy(m_Bytes + index * Size, m_Record, Size); }

 private:
  unsigned char* m_Bytes;
  unsigned char* m_Record;
};

}  // namespace qelta::bench
