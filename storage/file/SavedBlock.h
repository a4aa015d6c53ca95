#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "BlockLayout.h"
#include "Catalogue.h"
#include "Extent.h"
#include "FileSystem.h"

namespace qelta {

/// The payload file of a commit, however damaged; not even its header is needed.
class SavedPayload {
 public:
  SavedPayload(FileSystem& files, const std::string& path);

  const std::string& GetPath() const { return m_Path; }

  /// Replaces `bytes` by those of the extent. Returns what is wrong with them, for a message; an
  /// empty text when they are intact.
  std::string Read(const Extent& extent, std::vector<unsigned char>& bytes);

  /// Bytes that were asked for.
  std::uint64_t GetBytesRead() const { return m_BytesRead; }

 private:
  std::string m_Path;
  std::string m_Problem;  // why there is no file
  std::unique_ptr<File> m_File;
  std::uint64_t m_Size = 0;
  std::uint64_t m_BytesRead = 0;
};

/// The content of a block as a commit stored it, as far as it is intact. Has one chunk of each part
/// in memory at a time.
class SavedBlock {
 public:
  /// Hears of a chunk that cannot be read, once.
  using LossHandler = std::function<void(const StoredChunk& chunk, const std::string& reason)>;
  using GoOn = std::function<bool()>;

  /// Payload and row outlive this. The block's format is one.
  SavedBlock(SavedPayload& payload, const BlockRow& row, LossHandler onLoss);

  /// What makes no sense in the row, for a message; an empty text when all does. The other
  /// operations need that.
  std::string Open();

  std::size_t GetRecordSize() const { return m_RecordSize; }
  std::size_t GetRecordsPerChunk() const { return std::size_t{1} << m_Shift; }
  std::size_t GetChunkSize(Part part) const {
    return part == Part::RECORDS ? m_RecordSize << m_Shift : kChunkBytes;
  }

  struct Bytes {
    const unsigned char* data = nullptr;
    std::size_t size = 0;
    bool isIntact = true;
  };
  /// A chunk; no bytes when none is stored. Valid until the next chunk of the part is loaded.
  Bytes Load(Part part, std::uint32_t number);
  /// Loads every chunk that was not loaded before, while `goOn` says true.
  void LoadRest(const GoOn& goOn);

  /// Whether `count` bytes from `offset` of a part lie in chunks that are stored, intact or not.
  bool Covers(Part part, std::uint64_t offset, std::uint64_t count);

  /// The indices that hold a record, in ascending runs, as far as they can be told, until `visit`
  /// says false.
  using RunVisitor = std::function<bool(std::size_t first, std::size_t count)>;
  void VisitRuns(const RunVisitor& visit);

  struct Content {
    bool isKnown = false;  // what follows is what was stored
    unsigned kind = 0;     // a ContentKind, 0 when it was dropped
    std::uint64_t offset = 0;
    std::uint64_t bytes = 0;
  };
  /// What each handle refers to, in ascending order, until `visit` says false.
  using ContentVisitor = std::function<bool(std::uint64_t handle, const Content& content)>;
  void VisitContents(const ContentVisitor& visit);

  /// False when a part of it is lost.
  bool ReadContent(const Content& content, std::vector<unsigned char>& out);

 private:
  enum class State { UNSEEN, INTACT, LOST };
  struct Chunk {
    StoredChunk stored;
    State state;
  };
  struct Stream {
    std::vector<Chunk> chunks;  // by number
    const Chunk* current = nullptr;
    std::vector<unsigned char> bytes;
  };

  static std::size_t PlaceOf(Part part) { return static_cast<std::size_t>(part) - 1; }
  static Chunk* FindChunk(Stream& stream, std::uint32_t number);
  std::string Sort();
  Bytes Load(Stream& stream, Chunk& chunk);
  std::uint64_t ReadDense();

  SavedPayload& m_Payload;
  const BlockRow& m_Row;
  LossHandler m_OnLoss;
  std::size_t m_RecordSize;
  unsigned m_Shift;
  std::array<Stream, 4> m_Streams;
};

}  // namespace qelta
