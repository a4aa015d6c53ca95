#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qelta {

/// Bytes in the payload file, with the XXH3-64 of what stands there. A length of 0 is no extent.
struct Extent {
  std::uint64_t offset = 0;
  std::uint64_t length = 0;
  std::uint64_t checksum = 0;
};

/// What the bytes of an extent are part of; numbers are part of the format.
enum class Part : std::uint32_t {
  RECORDS = 1,   ///< records
  PRESENCE = 2,  ///< a bit for each index; a block without any holds all indices below its span
  HANDLES = 3,   ///< where each string or list stands in CONTENTS
  CONTENTS = 4,  ///< strings and lists
  ID_MAP = 5
};

/// "records", for messages.
const char* NameOf(Part part);

/// "262144 bytes at offset 12288 of db/payload-1.qd", for messages.
std::string Describe(const Extent& extent, const std::string& path);

/// One stored chunk of a block.
struct StoredChunk {
  Part part;
  std::uint32_t number;  ///< counts the chunks of the part from 0
  Extent extent;
};

/// "chunk 3 of its records, ..."
std::string Describe(const StoredChunk& chunk, const std::string& path);

/// 32 bytes a chunk, little-endian: part, number, offset, length, checksum.
std::string PackChunks(const std::vector<StoredChunk>& chunks);
/// False when `packed` is no list of chunks.
bool UnpackChunks(const std::string& packed, std::vector<StoredChunk>& chunks);

}  // namespace qelta
