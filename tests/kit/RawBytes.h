#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "FED_DataDescriptor.h"

namespace qelta::test {

/// The T that stands at a byte offset of an object with a fixed binary layout.
template <class T, class Object>
T ReadAt(const Object& object, std::size_t offset) {
  T value;
  std::memcpy(&value, reinterpret_cast<const unsigned char*>(&object) + offset, sizeof value);
  return value;
}

template <class T, class Object>
void WriteAt(Object& object, std::size_t offset, T value) {
  std::memcpy(reinterpret_cast<unsigned char*>(&object) + offset, &value, sizeof value);
}

// Where a Fortran program finds the parts of a descriptor.
constexpr std::size_t kMaskAt = 56;
constexpr std::size_t kTableIdAt = 60;
constexpr std::size_t kBlockIdAt = 64;
constexpr std::size_t kMissStampAt = 72;

inline std::int32_t SlotOf(const FED_DataDescriptor& descriptor, std::size_t i) {
  return ReadAt<std::int32_t>(descriptor, 4 * i);
}

inline std::int32_t BlockIdOf(const FED_DataDescriptor& descriptor) {
  return ReadAt<std::int32_t>(descriptor, kBlockIdAt);
}

/// What the block set remembers in a descriptor.
struct Cache {
  std::int32_t tableId;
  std::int32_t blockId;
  std::uint64_t missStamp;

  friend bool operator==(const Cache& a, const Cache& b) {
    return a.tableId == b.tableId && a.blockId == b.blockId && a.missStamp == b.missStamp;
  }
};

inline Cache CacheOf(const FED_DataDescriptor& descriptor) {
  return {ReadAt<std::int32_t>(descriptor, kTableIdAt), BlockIdOf(descriptor),
          ReadAt<std::uint64_t>(descriptor, kMissStampAt)};
}

inline void WriteCache(FED_DataDescriptor& descriptor, const Cache& cache) {
  WriteAt(descriptor, kTableIdAt, cache.tableId);
  WriteAt(descriptor, kBlockIdAt, cache.blockId);
  WriteAt(descriptor, kMissStampAt, cache.missStamp);
}

}  // namespace qelta::test
