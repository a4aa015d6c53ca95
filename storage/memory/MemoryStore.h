#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "FED_DataDescriptor.h"
#include "MemoryArena.h"
#include "MemoryTable.h"

namespace qelta {

/// The content of one block, which outlives the block object.
struct MemoryContent {
  MemoryContent(std::string recordFormat, std::size_t recordSize)
      : format(std::move(recordFormat)), records(recordSize) {}

  std::string format;
  int properties = 0;
  MemoryTable records;
  MemoryArena lists;
};

/// The content of one database, shared by the database and its blocks.
struct MemoryStore {
  std::map<FED_DataDescriptor, std::shared_ptr<MemoryContent>> contents;
  std::uint64_t flushes = 0;  // has changed whenever a database closed its blocks
};

}  // namespace qelta
