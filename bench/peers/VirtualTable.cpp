#include "VirtualTable.h"

#include <cstring>
#include <vector>

namespace qelta::bench {
namespace {

template <std::size_t Size>
class ArrayTable : public VirtualTable {
 public:
  explicit ArrayTable(std::size_t count) : m_Bytes(count * Size) {}

  void Get(std::size_t index, unsigned char* record) const override {
    std::memcpy(record, m_Bytes.data() + index * Size, Size);
  }
  void Set(std::size_t index, const unsigned char* record) override {
    std::memcpy(m_Bytes.data() + index * Size, record, Size);
  }

 private:
  std::vector<unsigned char> m_Bytes;
};

}  // namespace

template <std::size_t Size>
std::unique_ptr<VirtualTable> MakeVirtualTable(std::size_t count) {
  return std::make_unique<ArrayTable<Size>>(count);
}

template std::unique_ptr<VirtualTable> MakeVirtualTable<24>(std::size_t);
template std::unique_ptr<VirtualTable> MakeVirtualTable<100>(std::size_t);

}  // namespace qelta::bench
