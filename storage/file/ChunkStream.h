#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ChunkCache.h"
#include "Extent.h"

namespace qelta {

class FileStore;

/// One part of a block's content: bytes in chunks of a fixed size, loaded when they are touched.
/// Bytes that were never written are 0, chunks that hold none of them do not exist.
///
/// Addresses stay valid until the next operation begins; see ChunkCache. What is written is kept in
/// memory, or in the payload file once the cache needs the room, and belongs to the next commit.
class ChunkStream {
 public:
  /// The birth of an extent that this program did not write: any reader may see it.
  static constexpr std::uint64_t kOldestBirth = 1;

  /// `key` is that of the block, for messages; both it and the store outlive the stream.
  ChunkStream(FileStore& store, const std::string& key, Part part, std::size_t chunkSize);
  ~ChunkStream();
  ChunkStream(const ChunkStream&) = delete;
  ChunkStream& operator=(const ChunkStream&) = delete;

  std::size_t GetChunkSize() const { return m_ChunkSize; }

  /// A chunk that a commit has stored.
  void Add(const StoredChunk& chunk, std::uint64_t birth);

  /// The bytes of a chunk and their number in `size`; null and 0 when there are none.
  const unsigned char* Find(std::uint32_t number, std::size_t& size);

  /// The bytes of a chunk that holds some, to be changed; null when there is none.
  unsigned char* FindToChange(std::uint32_t number);

  /// The bytes of a chunk, to be changed, at least `end` of them. The caller is going to write
  /// those from `begin` to `end`; other new ones are 0, and all new ones when `zeroed`.
  unsigned char* Touch(std::uint32_t number, std::size_t begin, std::size_t end, bool zeroed);

  /// Writes a whole chunk to the payload file, past the cache.
  void Store(std::uint32_t number, const void* bytes, std::size_t size);

  // The same by bytes from the start of the stream, across chunks; each chunk is an operation.
  void Read(std::uint64_t offset, void* out, std::uint64_t size);
  void Write(std::uint64_t offset, const void* bytes, std::uint64_t size);

  /// Writes what is dirty; nothing is durable yet.
  void Flush();

  /// Appends all stored chunks. Everything must have been flushed.
  void AppendChunks(std::vector<StoredChunk>& out) const;

  /// What is stored now is part of the commit `generation`.
  void Committed(std::uint64_t generation);

  /// The chunk's bytes have another place, since the commit `birth`.
  void Relocate(const StoredChunk& chunk, std::uint64_t birth) noexcept;

  /// Gives all chunks up.
  void Clear() noexcept;

  /// Called by the cache: writes the page if need be and gives its memory back.
  void Evict(Page& page);

 private:
  struct Chunk {
    Extent extent;
    std::uint64_t birth = 0;  // the commit that first referred to the extent, 0: none yet
    std::unique_ptr<Page> page;
  };

  Chunk* FindChunk(std::uint32_t number);
  Chunk& MakeChunk(std::uint32_t number);
  Page* FindPage(std::uint32_t number);
  Page* LoadPage(Chunk& chunk, std::uint32_t number);
  Page& MakePage(Chunk& chunk, std::uint32_t number, std::size_t capacity);
  void Grow(Page& page, std::size_t size);
  void WritePage(Chunk& chunk, Page& page);
  template <class Visit>
  void ForEach(Visit visit);
  [[noreturn]] void FailDamaged(std::uint32_t number, const Extent& extent, const char* what);

  FileStore& m_Store;
  const std::string& m_Key;
  Part m_Part;
  std::size_t m_ChunkSize;
  std::vector<Chunk> m_Chunks;
  std::unique_ptr<std::map<std::uint32_t, Chunk>> m_Far;  // chunks far behind the others, or null
};

}  // namespace qelta
