#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "ChunkStream.h"
#include "ContentKind.h"
#include "FED_IntSetIntvl.h"
#include "FileStore.h"

namespace qelta {

/// The content of one block: records, which of them are there, strings and lists. Outlives the
/// block object, belongs to the store; little more than its row of the catalogue until Open.
///
/// Records lie in chunks of a power of two of them. Indices below `m_Dense` are all there; for
/// those behind it, up to the span, PRESENCE has a bit each, after a word that holds `m_Dense`.
/// Callers check ranges.
class FileContent {
 public:
  /// Where a string or list stands in CONTENTS.
  struct Place {
    std::uint64_t offset;
    std::uint64_t bytes;
  };

  /// `row` comes from the catalogue, or names key, format and properties of a new block.
  FileContent(FileStore& store, BlockRow row, bool isStored);
  ~FileContent();
  FileContent(const FileContent&) = delete;
  FileContent& operator=(const FileContent&) = delete;

  /// What the catalogue said at the last commit.
  const BlockRow& GetRow() const { return m_Row; }
  bool IsStored() const { return m_IsStored; }
  /// Not all of it is part of a commit.
  bool IsChanged() const { return m_IsChanged; }

  /// Makes the content ready for use, which the other operations need; does nothing when it is.
  /// Fails when the row makes no sense.
  void Open();

  /// Makes it part of the next commit; fails where nothing may change.
  void BeginChange();

  bool Has(std::size_t index) {
    m_Store.BeginOperation();
    return IsPresent(index);
  }
  std::int64_t MaxIndex() const { return static_cast<std::int64_t>(m_Span) - 1; }
  void PresentRuns(FED_IntSetIntvl<int>& out);
  const unsigned char* Find(std::size_t index) {
    m_Store.BeginOperation();
    return IsPresent(index) ? BytesOf(index) : nullptr;
  }
  unsigned char* FindToChange(std::size_t index);

  template <class Use>
  std::size_t VisitRun(std::size_t first, std::size_t count, Use use) {
    for (std::size_t done = 0; done < count;) {
      m_Store.BeginOperation();
      const std::size_t share = ShareOf(first + done, count - done, 1);
      const std::size_t present = CountFrom(first + done, share);
      if (present > 0) use(BytesOf(first + done), done, present);
      done += present;
      if (present < share) return done;
    }
    return count;
  }

  /// In steps of at most two chunks, each of which is done wholly or, for want of room, not at all.
  template <class Use>
  void TouchRun(std::size_t first, std::size_t count, bool zeroed, Use use) {
    for (std::size_t done = 0; done < count;) {
      const std::size_t step = ShareOf(first + done, count - done, 2);
      PrepareRun(first + done, step);
      for (std::size_t at = done; at < done + step;) {
        const std::size_t share = ShareOf(first + at, done + step - at, 1);
        use(PrepareBytes(first + at, share, zeroed), at, share);
        at += share;
      }
      MarkPresent(first + done, step);
      done += step;
    }
  }

  void WriteRun(std::size_t first, std::size_t count, const unsigned char* records);

  bool IsFull() const { return m_Handles >= kMaxHandle; }
  bool FindContent(ContentKind kind, std::uint64_t handle, Place& out);
  void CopyContent(const Place& place, void* out);
  std::uint64_t StoreContent(ContentKind kind, const void* data, std::size_t bytes);

  /// Whether strings or lists were stored since the content was opened.
  bool HasNewContents() const { return m_HasNewContents; }
  /// Drops strings and lists that no record refers to; their handles are not given out again. False
  /// when there are none. Nothing changes when it fails. Needs a bit for each handle.
  bool DropUnreferenced();

  /// Writes what is dirty; returns what the catalogue is to say.
  BlockRow Flush();
  /// What Flush returned is part of the commit `generation`.
  void Committed(BlockRow&& row, std::uint64_t generation) noexcept;
  /// All chunks, which are these now, have another place since the commit `generation`; `row` says
  /// so. There must be no changes.
  void Relocated(BlockRow& row, const std::vector<StoredChunk>& chunks,
                 std::uint64_t generation) noexcept;
  /// Gives all content up: the block is deleted.
  void Discard() noexcept;

  std::int32_t properties;
  std::size_t placeInChanges = 0;  ///< the store's, while it is changed

 private:
  static constexpr Part kParts[] = {Part::RECORDS, Part::PRESENCE, Part::HANDLES, Part::CONTENTS};

  // Most blocks have nothing but records.
  ChunkStream& StreamOf(Part part);
  std::unique_ptr<ChunkStream>& SlotOf(Part part) {
    return m_Streams[static_cast<std::size_t>(part) - 1];
  }
  ChunkStream& Records() { return *SlotOf(Part::RECORDS); }

  // The part of a run that lies in the next `chunks` chunks.
  std::size_t ShareOf(std::size_t index, std::size_t count, std::size_t chunks) const {
    const std::size_t perChunk = std::size_t{1} << m_Shift;
    return std::min(count, chunks * perChunk - (index & (perChunk - 1)));
  }
  bool IsPresent(std::size_t index) {
    return index < m_Dense || (index < m_Span && IsPresentBeyond(index));
  }

  void LoadChunks();
  void LoadDense();
  bool IsPresentBeyond(std::size_t index);
  template <class Visit>
  void VisitWords(std::size_t first, std::size_t last, Visit visit);
  std::size_t CountFrom(std::size_t first, std::size_t count);
  std::size_t NextPresent(std::size_t from);
  std::size_t CountIn(std::size_t first, std::size_t count);
  const unsigned char* BytesOf(std::size_t index);
  void PrepareRun(std::size_t first, std::size_t count);
  void PrepareMarks(std::size_t first, std::size_t count);
  void WriteChunk(std::size_t first, const unsigned char* records);
  unsigned char* PrepareBytes(std::size_t index, std::size_t count, bool zeroed);
  void MarkPresent(std::size_t first, std::size_t count);
  void ExtendDense();
  std::vector<bool> FindReferenced();
  bool HasUnreferenced(const std::vector<bool>& referenced);
  std::uint64_t CopyReferenced(const std::vector<bool>& referenced, ChunkStream& handles,
                               ChunkStream& contents);
  [[noreturn]] void FailDamaged(const char* what) const;

  FileStore& m_Store;
  BlockRow m_Row;
  bool m_IsStored;
  bool m_IsChanged = false;
  bool m_KnowsDense = true;
  bool m_HasNewContents = false;
  unsigned m_Shift = 6;
  std::size_t m_RecordSize = 0;
  std::uint64_t m_Records = 0;
  std::uint64_t m_Span = 0;
  std::uint64_t m_Dense = 0;
  std::uint64_t m_Handles = 0;
  std::uint64_t m_ContentBytes = 0;
  std::unique_ptr<ChunkStream> m_Streams[4];  // of a part that holds something
};

}  // namespace qelta
