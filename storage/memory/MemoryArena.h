#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "ContentKind.h"

namespace qelta {

/// The strings and lists of one block, under handles counted from 1. Nothing is ever released or
/// moved while the arena lives.
class MemoryArena {
 public:
  using Kind = ContentKind;

  struct Content {
    const void* data;
    std::size_t bytes;
  };

  explicit MemoryArena(std::uint64_t maxHandle = kMaxHandle) : m_MaxHandle(maxHandle) {}

  /// True when `maxHandle` contents are kept and no further one can be.
  bool IsFull() const { return m_Entries.size() >= m_MaxHandle; }

  /// Keeps a copy and returns its handle. Must not be full. std::bad_alloc changes nothing.
  std::uint64_t Store(Kind kind, const void* data, std::size_t bytes);

  /// What is kept under the handle; handle 0 is empty content of every kind. False when there is
  /// nothing of that kind.
  bool Find(Kind kind, std::uint64_t handle, Content& out) const;

 private:
  struct Entry {
    const unsigned char* data;
    std::size_t bytes;
    Kind kind;
  };

  unsigned char* Allocate(std::size_t bytes);

  std::uint64_t m_MaxHandle;
  std::vector<Entry> m_Entries;
  std::vector<std::unique_ptr<unsigned char[]>> m_Chunks;
  unsigned char* m_Free = nullptr;
  std::size_t m_FreeBytes = 0;
};

}  // namespace qelta
