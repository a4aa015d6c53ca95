#include "FileContent.h"

#include <cstring>
#include <limits>
#include <utility>

#include "BlockLayout.h"
#include "Damage.h"
#include "FED_Message.h"
#include "KeyCode.h"
#include "LittleEndian.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|FileContent";

constexpr std::size_t kBits = 64;

std::uint64_t LowBits(std::size_t count) {
  return count >= kBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

// The bits of word `word` that lie in [first, first + count).
std::uint64_t MaskOf(std::size_t word, std::size_t first, std::size_t count) {
  const std::size_t begin = word * kBits;
  const std::size_t end = first + count;
  std::uint64_t mask = LowBits(end > begin ? end - begin : 0);
  if (first > begin) mask &= ~LowBits(first - begin);
  return mask;
}

std::size_t CountBits(std::uint64_t word) {
  return static_cast<std::size_t>(__builtin_popcountll(word));
}

std::size_t LowestBit(std::uint64_t word) {
  return static_cast<std::size_t>(__builtin_ctzll(word));
}

}  // namespace

ChunkStream& FileContent::StreamOf(Part part) {
  std::unique_ptr<ChunkStream>& stream = SlotOf(part);
  if (stream == nullptr) {
    const std::size_t size = part == Part::RECORDS ? m_RecordSize << m_Shift : kChunkBytes;
    stream = std::make_unique<ChunkStream>(m_Store, m_Row.key, part, size);
  }
  return *stream;
}

FileContent::FileContent(FileStore& store, BlockRow row, bool isStored)
    : properties(row.properties), m_Store(store), m_Row(std::move(row)), m_IsStored(isStored) {}

FileContent::~FileContent() = default;

void FileContent::Open() {
  if (SlotOf(Part::RECORDS) != nullptr) return;
  m_RecordSize = RecordSizeOf(m_Row.format);
  m_Shift = ShiftFor(m_RecordSize);
  try {
    StreamOf(Part::RECORDS);
    LoadChunks();
  } catch (...) {
    for (std::unique_ptr<ChunkStream>& stream : m_Streams) stream.reset();
    throw;
  }
  m_Records = m_Row.records;
  m_Span = m_Row.span;
  m_Handles = m_Row.handles;
  m_ContentBytes = m_Row.contentBytes;
  m_KnowsDense = m_Records == m_Span;
  m_Dense = m_KnowsDense ? m_Span : 0;
}

void FileContent::LoadChunks() {
  std::vector<StoredChunk> chunks;
  if (const char* const fault = FindFault(m_Row, chunks)) FailDamaged(fault);
  for (const StoredChunk& chunk : chunks) {
    StreamOf(chunk.part).Add(chunk, ChunkStream::kOldestBirth);
  }
}

void FileContent::FailDamaged(const char* what) const {
  FED_DataDescriptor descriptor;
  DecodeKey(m_Row.key, descriptor);
  throw Damage("220300000021",
               FED_MESSAGE("The catalogue's entry of block %s is damaged: %s. Salvage the database "
                           "to copy what is intact, or restore a backup.",
                           descriptor.ToString().c_str(), what),
               kLocation);
}

// The store takes note before anything changes, or refuses.
void FileContent::BeginChange() {
  if (!m_KnowsDense) LoadDense();
  if (m_IsChanged) return;
  m_Store.NoteChange(*this);
  m_IsChanged = true;
}

void FileContent::LoadDense() {
  unsigned char word[kWord];
  StreamOf(Part::PRESENCE).Read(0, word, kWord);
  m_Dense = std::min<std::uint64_t>(GetNumber(word, kWord), m_Span);
  m_KnowsDense = true;
}

bool FileContent::IsPresentBeyond(std::size_t index) {
  if (!m_KnowsDense) LoadDense();
  if (index < m_Dense) return true;
  return (WordAt(index / kBits) >> index % kBits & 1) != 0;
}

std::uint64_t FileContent::WordAt(std::size_t number) {
  std::uint64_t found = 0;
  VisitWords(number, number, [&](std::size_t, std::uint64_t word) {
    found = word;
    return false;
  });
  return found;
}

// Calls visit(number, word) for the words of PRESENCE that are not 0, until it gives false.
template <class Visit>
void FileContent::VisitWords(std::size_t first, std::size_t last, Visit visit) {
  const std::size_t perChunk = kChunkBytes / kWord;
  for (std::size_t word = first; word <= last;) {
    const std::size_t at = (word + 1) % perChunk;
    const std::size_t end = std::min(last - word + 1, perChunk - at);
    std::size_t size = 0;
    const unsigned char* const bytes =
        StreamOf(Part::PRESENCE).Find(static_cast<std::uint32_t>((word + 1) / perChunk), size);
    for (std::size_t i = 0; i < end && (at + i + 1) * kWord <= size; ++i) {
      const std::uint64_t bits = GetNumber(bytes + (at + i) * kWord, kWord);
      if (bits != 0 && !visit(word + i, bits)) return;
    }
    word += end;
  }
}

void FileContent::PresentRuns(FED_IntSetIntvl<int>& out) {
  m_Store.BeginOperation();
  if (!m_KnowsDense) LoadDense();
  out.Clear();
  if (m_Dense > 0) out.Insert(0, static_cast<int>(m_Dense - 1));
  if (m_Dense == m_Span) return;
  const std::size_t count = m_Span - m_Dense;
  VisitWords(m_Dense / kBits, (m_Span - 1) / kBits, [&](std::size_t number, std::uint64_t word) {
    word &= MaskOf(number, m_Dense, count);
    while (word != 0) {
      const std::size_t low = LowestBit(word);
      const std::uint64_t rest = ~(word >> low);
      const std::size_t length = rest == 0 ? kBits : LowestBit(rest);
      const std::size_t first = number * kBits + low;
      out.Insert(static_cast<int>(first), static_cast<int>(first + length - 1));
      word &= ~LowBits(std::min(low + length, kBits));
    }
    return true;
  });
}

// How many records from `first` on follow one another, at most `count`.
std::size_t FileContent::CountFrom(std::size_t first, std::size_t count) {
  if (first + count <= m_Dense) return count;
  if (!m_KnowsDense) LoadDense();
  const std::size_t end = std::min<std::uint64_t>(first + count, m_Span);
  std::size_t next = std::max<std::size_t>(first, std::min<std::uint64_t>(m_Dense, end));
  if (next >= end) return next - first;
  while (next < end) {
    const std::size_t number = next / kBits;
    const std::uint64_t absent = ~WordAt(number) & MaskOf(number, next, end - next);
    if (absent != 0) return number * kBits + LowestBit(absent) - first;
    next = std::min(end, (number + 1) * kBits);
  }
  return next - first;
}

// The lowest index from `from` on that holds a record; the span when there is none.
std::size_t FileContent::NextPresent(std::size_t from) {
  if (!m_KnowsDense) LoadDense();
  if (from < m_Dense || from >= m_Span) return std::min<std::uint64_t>(from, m_Span);
  std::size_t next = m_Span;
  VisitWords(from / kBits, (m_Span - 1) / kBits, [&](std::size_t number, std::uint64_t word) {
    word &= MaskOf(number, from, m_Span - from);
    if (word != 0) next = number * kBits + LowestBit(word);
    return word == 0;
  });
  return next;
}

std::size_t FileContent::CountIn(std::size_t first, std::size_t count) {
  const std::size_t end = std::min<std::uint64_t>(first + count, m_Span);
  if (first >= end) return 0;
  const std::size_t beyond = std::max<std::uint64_t>(first, std::min<std::uint64_t>(m_Dense, end));
  std::size_t present = beyond - first;
  if (beyond == end) return present;
  VisitWords(beyond / kBits, (end - 1) / kBits, [&](std::size_t number, std::uint64_t word) {
    present += CountBits(word & MaskOf(number, beyond, end - beyond));
    return true;
  });
  return present;
}

const unsigned char* FileContent::BytesOf(std::size_t index) {
  static const unsigned char s_Nothing = 0;
  if (m_RecordSize == 0) return &s_Nothing;
  const std::size_t slot = index & ((std::size_t{1} << m_Shift) - 1);
  std::size_t size = 0;
  const unsigned char* const bytes =
      Records().Find(static_cast<std::uint32_t>(index >> m_Shift), size);
  if ((slot + 1) * m_RecordSize > size) FailDamaged("a record lies outside of its chunks");
  return bytes + slot * m_RecordSize;
}

unsigned char* FileContent::FindToChange(std::size_t index) {
  m_Store.BeginOperation();
  if (m_RecordSize == 0 || !IsPresent(index)) return nullptr;
  BeginChange();
  return PrepareBytes(index, 1, false);
}

// Everything that can fail, before anything changes.
void FileContent::PrepareRun(std::size_t first, std::size_t count) {
  m_Store.BeginOperation();
  BeginChange();
  CountIn(first, count);  // loads what tells
  for (std::size_t done = 0; done < count;) {
    const std::size_t share = ShareOf(first + done, count - done, 1);
    PrepareBytes(first + done, share, false);
    done += share;
  }
  PrepareMarks(first, count);
}

// Room for the bits, so that MarkPresent cannot fail.
void FileContent::PrepareMarks(std::size_t first, std::size_t count) {
  if (first <= m_Dense) return;
  const std::size_t begin = (first / kBits + 1) * kWord;
  const std::size_t end = ((first + count - 1) / kBits + 2) * kWord;
  for (std::size_t at = begin; at < end;) {
    const std::size_t share = std::min(end - at, kChunkBytes - at % kChunkBytes);
    StreamOf(Part::PRESENCE)
        .Touch(static_cast<std::uint32_t>(at / kChunkBytes), at % kChunkBytes,
               at % kChunkBytes + share, true);
    at += share;
  }
}

void FileContent::WriteRun(std::size_t first, std::size_t count, const unsigned char* records) {
  const std::size_t perChunk = std::size_t{1} << m_Shift;
  for (std::size_t done = 0; done < count;) {
    const std::size_t index = first + done;
    const unsigned char* const from = records + done * m_RecordSize;
    const std::size_t rest = count - done;
    if (rest >= perChunk && m_RecordSize > 0 && index % perChunk == 0) {
      WriteChunk(index, from);
      done += perChunk;
      continue;
    }
    const std::size_t share = rest < perChunk ? rest : ShareOf(index, rest, 1);
    const unsigned char* next = from;
    TouchRun(index, share, false, [&](unsigned char* bytes, std::size_t, std::size_t part) {
      if (m_RecordSize > 0) std::memcpy(bytes, next, part * m_RecordSize);
      next += part * m_RecordSize;
    });
    done += share;
  }
}

// A whole chunk goes where it belongs without a detour through the cache.
void FileContent::WriteChunk(std::size_t first, const unsigned char* records) {
  const std::size_t count = std::size_t{1} << m_Shift;
  m_Store.BeginOperation();
  BeginChange();
  CountIn(first, count);  // loads what tells
  PrepareMarks(first, count);
  Records().Store(static_cast<std::uint32_t>(first >> m_Shift), records, count * m_RecordSize);
  MarkPresent(first, count);
}

unsigned char* FileContent::PrepareBytes(std::size_t index, std::size_t count, bool zeroed) {
  const std::size_t begin = (index & ((std::size_t{1} << m_Shift) - 1)) * m_RecordSize;
  unsigned char* const bytes = Records().Touch(static_cast<std::uint32_t>(index >> m_Shift), begin,
                                               begin + count * m_RecordSize, false) +
                               begin;
  if (zeroed && CountIn(index, count) < count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (!IsPresent(index + i)) std::memset(bytes + i * m_RecordSize, 0, m_RecordSize);
    }
  }
  return bytes;
}

void FileContent::MarkPresent(std::size_t first, std::size_t count) {
  m_Records += count - CountIn(first, count);
  m_Span = std::max<std::uint64_t>(m_Span, first + count);
  if (first <= m_Dense) {
    m_Dense = std::max<std::uint64_t>(m_Dense, first + count);
    if (m_Dense < m_Span) ExtendDense();
    return;
  }
  for (std::size_t word = first / kBits; word <= (first + count - 1) / kBits; ++word) {
    const std::size_t at = (word + 1) * kWord;
    unsigned char* const bytes =
        StreamOf(Part::PRESENCE).FindToChange(static_cast<std::uint32_t>(at / kChunkBytes)) +
        at % kChunkBytes;
    PutNumber(bytes, GetNumber(bytes, kWord) | MaskOf(word, first, count), kWord);
  }
}

void FileContent::ExtendDense() {
  try {
    m_Dense += CountFrom(m_Dense, m_Span - m_Dense);
  } catch (...) {  // the bits are right all the same
  }
}

bool FileContent::FindContent(ContentKind kind, std::uint64_t handle, Place& out) {
  out = {0, 0};
  m_Store.BeginOperation();
  if (handle == 0) return true;
  if (handle > m_Handles) return false;
  unsigned char entry[kHandleEntry];
  StreamOf(Part::HANDLES).Read((handle - 1) * kHandleEntry, entry, kHandleEntry);
  const std::uint64_t length = GetNumber(entry + kWord, kWord);
  if (length >> kKindShift != static_cast<std::uint64_t>(kind)) return false;
  out = {GetNumber(entry, kWord), length & ((std::uint64_t{1} << kKindShift) - 1)};
  if (out.offset > m_ContentBytes || out.bytes > m_ContentBytes - out.offset) {
    FailDamaged("a string or list lies outside of its chunks");
  }
  return true;
}

void FileContent::CopyContent(const Place& place, void* out) {
  StreamOf(Part::CONTENTS).Read(place.offset, out, place.bytes);
}

// Until it is counted, what is written here is out of everybody's sight.
std::uint64_t FileContent::StoreContent(ContentKind kind, const void* data, std::size_t bytes) {
  m_Store.BeginOperation();
  BeginChange();
  StreamOf(Part::CONTENTS).Write(m_ContentBytes, data, bytes);
  unsigned char entry[kHandleEntry];
  PutNumber(entry, m_ContentBytes, kWord);
  PutNumber(entry + kWord, bytes | static_cast<std::uint64_t>(kind) << kKindShift, kWord);
  StreamOf(Part::HANDLES).Write(m_Handles * kHandleEntry, entry, kHandleEntry);
  m_ContentBytes += bytes;
  m_HasNewContents = true;
  return ++m_Handles;
}

BlockRow FileContent::Flush() {
  if (m_Dense == m_Span) {
    if (SlotOf(Part::PRESENCE) != nullptr) SlotOf(Part::PRESENCE)->Clear();
  } else {
    unsigned char word[kWord];
    PutNumber(word, m_Dense, kWord);
    StreamOf(Part::PRESENCE).Write(0, word, kWord);
  }
  std::vector<StoredChunk> chunks;
  for (const std::unique_ptr<ChunkStream>& stream : m_Streams) {
    if (stream == nullptr) continue;
    stream->Flush();
    stream->AppendChunks(chunks);
  }
  return {m_Row.key, m_Row.format, properties,     m_Records,
          m_Span,    m_Handles,    m_ContentBytes, PackChunks(chunks)};
}

void FileContent::Committed(BlockRow&& row, std::uint64_t generation) noexcept {
  for (const std::unique_ptr<ChunkStream>& stream : m_Streams) {
    if (stream != nullptr) stream->Committed(generation);
  }
  m_Row = std::move(row);
  m_IsStored = true;
  m_IsChanged = false;
}

void FileContent::Relocated(BlockRow& row, const std::vector<StoredChunk>& chunks,
                            std::uint64_t generation) noexcept {
  m_Row.chunks.swap(row.chunks);
  for (const StoredChunk& chunk : chunks) {
    ChunkStream* const stream = SlotOf(chunk.part).get();
    if (stream != nullptr) stream->Relocate(chunk, generation);
  }
}

void FileContent::Discard() noexcept {
  for (const std::unique_ptr<ChunkStream>& stream : m_Streams) {
    if (stream != nullptr) stream->Clear();
  }
}

}  // namespace qelta
