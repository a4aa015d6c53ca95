#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace qelta {

class ChunkStream;

/// A chunk in memory.
struct Page {
  Page(ChunkStream& owner, std::uint32_t chunk) : stream(&owner), number(chunk) {}

  ChunkStream* stream;
  std::uint32_t number;
  bool isDirty = false;
  std::size_t size = 0;      // bytes that count; what follows reads as 0
  std::size_t capacity = 0;  // bytes there is room for
  std::unique_ptr<unsigned char[]> bytes;
  std::uint64_t lastUse = 0;  // the operation that used it last
  std::size_t place = 0;      // in the cache's list
};

/// Bounds the memory of the pages of one database. Pages belong to their streams; those that were
/// used longest ago are asked to go first, dirty ones by being written.
///
/// Pages of the operation at hand are never asked to go, whatever their size: an operation begins
/// with Step and may keep addresses in pages until the next one.
class ChunkCache {
 public:
  explicit ChunkCache(std::uint64_t capacity) : m_Capacity(capacity) {}
  ChunkCache(const ChunkCache&) = delete;
  ChunkCache& operator=(const ChunkCache&) = delete;

  void Step() { ++m_Now; }
  void Use(Page& page) const { page.lastUse = m_Now; }

  std::uint64_t GetCapacity() const { return m_Capacity; }

  /// Makes room for `bytes` more. Fails when the room is not there since pages cannot be written.
  void MakeRoom(std::size_t bytes);

  /// The page counts from now on.
  void Add(Page& page);
  /// The page has `bytes` more than when it was added.
  void Grew(std::size_t bytes) { m_Used += bytes; }
  void Remove(Page& page);

 private:
  static std::size_t CostOf(const Page& page) { return sizeof(Page) + page.capacity; }

  std::uint64_t m_Capacity;
  std::uint64_t m_Used = 0;
  std::uint64_t m_Now = 1;
  std::vector<Page*> m_Pages;
};

}  // namespace qelta
