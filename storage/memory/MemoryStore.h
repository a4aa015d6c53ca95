#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "FED_DataDescriptor.h"
#include "MemoryArena.h"
#include "MemoryTable.h"

namespace qelta {

/// The content of one block, which outlives the block object.
class MemoryContent : public MemoryTable {
 public:
  using Place = MemoryArena::Content;

  MemoryContent(std::string recordFormat, std::size_t recordSize)
      : MemoryTable(recordSize), format(std::move(recordFormat)) {}

  unsigned char* FindToChange(std::size_t index) { return Find(index); }
  void WriteRun(std::size_t first, std::size_t count, const unsigned char* records) {
    TouchRun(first, count, false, [&](unsigned char* bytes, std::size_t, std::size_t share) {
      const std::size_t size = share * GetRecordSize();
      if (size > 0) std::memcpy(bytes, records, size);
      records += size;
    });
  }

  bool IsFull() const { return lists.IsFull(); }
  bool FindContent(ContentKind kind, std::uint64_t handle, Place& out) const {
    return lists.Find(kind, handle, out);
  }
  static void CopyContent(const Place& place, void* out) {
    std::memcpy(out, place.data, place.bytes);
  }
  std::uint64_t StoreContent(ContentKind kind, const void* data, std::size_t bytes) {
    return lists.Store(kind, data, bytes);
  }

  std::string format;
  int properties = 0;
  MemoryArena lists;
};

/// The content of one database, shared by the database and its blocks.
struct MemoryStore {
  std::map<FED_DataDescriptor, std::shared_ptr<MemoryContent>> contents;
  std::uint64_t flushes = 0;  // has changed whenever a database closed its blocks
};

}  // namespace qelta
