#include "SavedBlock.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ContentKind.h"
#include "IoFailure.h"
#include "LittleEndian.h"
#include "Payload.h"

namespace qelta {
namespace {

constexpr std::uint64_t kMaxSpan = std::uint64_t{1} << 31;
constexpr std::uint64_t kBits = 64;

// Joins runs that follow one another.
class RunJoiner {
 public:
  explicit RunJoiner(const SavedBlock::RunVisitor& visit) : m_Visit(visit) {}

  void Add(std::uint64_t first, std::uint64_t count) {
    if (first != m_First + m_Count) Finish();
    if (m_Count == 0) m_First = first;
    m_Count += count;
  }
  void Finish() {
    if (m_GoesOn && m_Count > 0) m_GoesOn = m_Visit(m_First, m_Count);
    m_Count = 0;
  }
  bool GoesOn() const { return m_GoesOn; }

 private:
  const SavedBlock::RunVisitor& m_Visit;
  std::size_t m_First = 0;
  std::size_t m_Count = 0;
  bool m_GoesOn = true;
};

// The bits of a word whose first one is that of index `base`, from `begin` to `end`.
void AddBits(std::uint64_t word, std::uint64_t base, std::uint64_t begin, std::uint64_t end,
             RunJoiner& runs) {
  if (word == ~std::uint64_t{0} && base >= begin && base + kBits <= end) {
    return runs.Add(base, kBits);
  }
  for (std::uint64_t index = base; word != 0; ++index, word >>= 1) {
    if ((word & 1) != 0 && begin <= index && index < end) runs.Add(index, 1);
  }
}

}  // namespace

SavedPayload::SavedPayload(FileSystem& files, const std::string& path) : m_Path(path) {
  try {
    m_File = files.Open(path, OpenMode::READ);
    m_Size = m_File->GetSize();
  } catch (const IoFailure& failure) {
    m_Problem = failure.GetMessageText();
    m_File.reset();
  }
}

std::string SavedPayload::Read(const Extent& extent, std::vector<unsigned char>& bytes) {
  m_BytesRead += extent.length;
  if (m_File == nullptr) return m_Problem;
  if (extent.offset > m_Size || extent.length > m_Size - extent.offset) {
    return "the file ends before it";
  }
  bytes.resize(static_cast<std::size_t>(extent.length));
  try {
    const char* const problem = Payload::ReadFrom(*m_File, extent, bytes.data());
    return problem == nullptr ? "" : problem;
  } catch (const IoFailure& failure) {
    return failure.GetMessageText();
  }
}

SavedBlock::SavedBlock(SavedPayload& payload, const BlockRow& row, LossHandler onLoss)
    : m_Payload(payload),
      m_Row(row),
      m_OnLoss(std::move(onLoss)),
      m_RecordSize(RecordSizeOf(row.format)),
      m_Shift(ShiftFor(m_RecordSize)) {}

std::string SavedBlock::Open() {
  if (m_Row.records > m_Row.span || m_Row.span > kMaxSpan || m_Row.handles > kMaxHandle) {
    return "its counts of records make no sense";
  }
  std::vector<StoredChunk> chunks;
  if (!UnpackChunks(m_Row.chunks, chunks)) return "its list of chunks makes no sense";
  for (const StoredChunk& chunk : chunks) {
    if (chunk.part > Part::CONTENTS) return "one of its chunks is no part of a block";
    if (chunk.extent.length > GetChunkSize(chunk.part)) return "one of its chunks is too long";
    m_Streams[PlaceOf(chunk.part)].chunks.push_back({chunk, State::UNSEEN});
  }
  return Sort();
}

std::string SavedBlock::Sort() {
  for (Stream& stream : m_Streams) {
    const auto number = [](const Chunk& chunk) { return chunk.stored.number; };
    std::sort(stream.chunks.begin(), stream.chunks.end(),
              [&](const Chunk& a, const Chunk& b) { return number(a) < number(b); });
    const auto twice =
        std::adjacent_find(stream.chunks.begin(), stream.chunks.end(),
                           [&](const Chunk& a, const Chunk& b) { return number(a) == number(b); });
    if (twice != stream.chunks.end()) return "it has a chunk twice";
  }
  return "";
}

SavedBlock::Chunk* SavedBlock::FindChunk(Stream& stream, std::uint32_t number) {
  const auto found = std::lower_bound(
      stream.chunks.begin(), stream.chunks.end(), number,
      [](const Chunk& chunk, std::uint32_t wanted) { return chunk.stored.number < wanted; });
  if (found == stream.chunks.end() || found->stored.number != number) return nullptr;
  return &*found;
}

SavedBlock::Bytes SavedBlock::Load(Part part, std::uint32_t number) {
  Stream& stream = m_Streams[PlaceOf(part)];
  Chunk* const chunk = FindChunk(stream, number);
  return chunk == nullptr ? Bytes() : Load(stream, *chunk);
}

SavedBlock::Bytes SavedBlock::Load(Stream& stream, Chunk& chunk) {
  if (chunk.state == State::LOST) return {nullptr, 0, false};
  if (stream.current != &chunk) {
    stream.current = nullptr;
    const std::string reason = m_Payload.Read(chunk.stored.extent, stream.bytes);
    chunk.state = reason.empty() ? State::INTACT : State::LOST;
    if (!reason.empty()) {
      m_OnLoss(chunk.stored, reason);
      return {nullptr, 0, false};
    }
    stream.current = &chunk;
  }
  return {stream.bytes.data(), stream.bytes.size(), true};
}

void SavedBlock::LoadRest(const GoOn& goOn) {
  for (Stream& stream : m_Streams) {
    for (Chunk& chunk : stream.chunks) {
      if (!goOn()) return;
      if (chunk.state == State::UNSEEN) Load(stream, chunk);
    }
  }
}

bool SavedBlock::Covers(Part part, std::uint64_t offset, std::uint64_t count) {
  const std::size_t size = GetChunkSize(part);
  while (count > 0) {
    const std::uint64_t at = offset % size;
    const std::uint64_t share = std::min<std::uint64_t>(count, size - at);
    const Chunk* const chunk =
        FindChunk(m_Streams[PlaceOf(part)], static_cast<std::uint32_t>(offset / size));
    if (chunk == nullptr || chunk->stored.extent.length < at + share) return false;
    offset += share;
    count -= share;
  }
  return true;
}

std::uint64_t SavedBlock::ReadDense() {
  if (m_Row.records == m_Row.span) return m_Row.span;
  const Bytes bytes = Load(Part::PRESENCE, 0);
  return bytes.size < kWord ? 0 : std::min(GetNumber(bytes.data, kWord), m_Row.span);
}

void SavedBlock::VisitRuns(const RunVisitor& visit) {
  constexpr std::uint64_t kPerChunk = kChunkBytes / kWord;
  RunJoiner runs(visit);
  const std::uint64_t dense = ReadDense();
  runs.Add(0, dense);
  if (dense < m_Row.span) {
    Stream& stream = m_Streams[PlaceOf(Part::PRESENCE)];
    for (Chunk& chunk : stream.chunks) {
      const Bytes bytes = Load(stream, chunk);
      for (std::size_t i = 0; (i + 1) * kWord <= bytes.size && runs.GoesOn(); ++i) {
        const std::uint64_t word = chunk.stored.number * kPerChunk + i;
        if (word == 0) continue;
        AddBits(GetNumber(bytes.data + i * kWord, kWord), (word - 1) * kBits, dense, m_Row.span,
                runs);
      }
    }
  }
  runs.Finish();
}

void SavedBlock::VisitContents(const ContentVisitor& visit) {
  constexpr std::uint64_t kPerChunk = kChunkBytes / kHandleEntry;
  Bytes chunk;
  for (std::uint64_t i = 0; i < m_Row.handles; ++i) {
    const auto at = static_cast<std::size_t>(i % kPerChunk * kHandleEntry);
    if (at == 0) chunk = Load(Part::HANDLES, static_cast<std::uint32_t>(i / kPerChunk));
    Content content;
    content.isKnown = chunk.isIntact;
    if (at + kHandleEntry <= chunk.size) {
      const std::uint64_t length = GetNumber(chunk.data + at + kWord, kWord);
      content.offset = GetNumber(chunk.data + at, kWord);
      content.kind = static_cast<unsigned>(length >> kKindShift);
      content.bytes = length & ((std::uint64_t{1} << kKindShift) - 1);
    }
    if (!visit(i + 1, content)) return;
  }
}

bool SavedBlock::ReadContent(const Content& content, std::vector<unsigned char>& out) {
  if (!Covers(Part::CONTENTS, content.offset, content.bytes)) return false;
  out.resize(static_cast<std::size_t>(content.bytes));
  for (std::size_t done = 0; done < out.size();) {
    const std::uint64_t offset = content.offset + done;
    const auto at = static_cast<std::size_t>(offset % kChunkBytes);
    const std::size_t share = std::min(out.size() - done, kChunkBytes - at);
    const Bytes bytes = Load(Part::CONTENTS, static_cast<std::uint32_t>(offset / kChunkBytes));
    if (!bytes.isIntact) return false;
    std::memcpy(&out[done], bytes.data + at, share);
    done += share;
  }
  return true;
}

}  // namespace qelta
