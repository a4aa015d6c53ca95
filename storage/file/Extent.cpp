#include "Extent.h"

#include "ByteCode.h"

namespace qelta {
namespace {

constexpr std::size_t kChunkSize = 32;

bool IsPart(std::uint32_t part) {
  return part >= static_cast<std::uint32_t>(Part::RECORDS) &&
         part <= static_cast<std::uint32_t>(Part::ID_MAP);
}

}  // namespace

const char* NameOf(Part part) {
  switch (part) {
    case Part::RECORDS:
      return "records";
    case Part::PRESENCE:
      return "index of records";
    case Part::HANDLES:
      return "list of strings and lists";
    case Part::CONTENTS:
      return "strings and lists";
    case Part::ID_MAP:
      return "id map";
  }
  return "content";
}

std::string Describe(const Extent& extent, const std::string& path) {
  return std::to_string(extent.length) + " bytes at offset " + std::to_string(extent.offset) +
         " of " + path;
}

std::string Describe(const StoredChunk& chunk, const std::string& path) {
  return "chunk " + std::to_string(chunk.number) + " of its " + NameOf(chunk.part) + ", " +
         Describe(chunk.extent, path);
}

std::string PackChunks(const std::vector<StoredChunk>& chunks) {
  std::string packed;
  packed.reserve(kChunkSize * chunks.size());
  for (const StoredChunk& chunk : chunks) {
    AppendNumber(packed, static_cast<std::uint32_t>(chunk.part));
    AppendNumber(packed, chunk.number);
    AppendNumber(packed, chunk.extent.offset);
    AppendNumber(packed, chunk.extent.length);
    AppendNumber(packed, chunk.extent.checksum);
  }
  return packed;
}

bool UnpackChunks(const std::string& packed, std::vector<StoredChunk>& chunks) {
  chunks.clear();
  if (packed.size() % kChunkSize != 0) return false;
  chunks.reserve(packed.size() / kChunkSize);
  ByteSource source(packed);
  std::uint32_t part = 0;
  while (source.Take(part)) {
    StoredChunk chunk{static_cast<Part>(part), 0, {}};
    source.Take(chunk.number);
    source.Take(chunk.extent.offset);
    source.Take(chunk.extent.length);
    source.Take(chunk.extent.checksum);
    if (!IsPart(part)) return false;
    chunks.push_back(chunk);
  }
  return true;
}

}  // namespace qelta
