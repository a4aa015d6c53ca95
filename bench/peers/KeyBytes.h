#pragma once

#include <FED_DataDescriptor.h>

#include <cstdint>
#include <cstring>

namespace qelta::bench {

/// The content of a descriptor, read where its fixed layout has it.
class KeyBytes {
 public:
  explicit KeyBytes(const FED_DataDescriptor& key)
      : m_Bytes(reinterpret_cast<const unsigned char*>(&key)) {}

  std::uint32_t Mask() const { return Word(FED_DataDescriptor::FIELD_COUNT); }
  std::uint32_t Slot(std::size_t field) const { return Word(field); }

 private:
  std::uint32_t Word(std::size_t i) const {
    std::uint32_t word;
    std::memcpy(&word, m_Bytes + i * sizeof word, sizeof word);
    return word;
  }

  const unsigned char* m_Bytes;
};

}  // namespace qelta::bench
