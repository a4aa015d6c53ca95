#include "ChunkStream.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "Damage.h"
#include "FED_Message.h"
#include "FileStore.h"
#include "KeyCode.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|ChunkStream";

}  // namespace

ChunkStream::ChunkStream(FileStore& store, const std::string& key, Part part, std::size_t chunkSize)
    : m_Store(store), m_Key(key), m_Part(part), m_ChunkSize(chunkSize) {}

ChunkStream::~ChunkStream() {
  ForEach([this](std::uint32_t, Chunk& chunk) {
    if (chunk.page != nullptr) m_Store.GetCache().Remove(*chunk.page);
  });
}

template <class Visit>
void ChunkStream::ForEach(Visit visit) {
  for (std::size_t i = 0; i < m_Chunks.size(); ++i) {
    visit(static_cast<std::uint32_t>(i), m_Chunks[i]);
  }
  if (m_Far == nullptr) return;
  for (auto& [number, chunk] : *m_Far) visit(number, chunk);
}

void ChunkStream::Add(const StoredChunk& stored, std::uint64_t birth) {
  Chunk& chunk = MakeChunk(stored.number);
  chunk.extent = stored.extent;
  chunk.birth = birth;
}

ChunkStream::Chunk* ChunkStream::FindChunk(std::uint32_t number) {
  if (number < m_Chunks.size()) return &m_Chunks[number];
  if (m_Far == nullptr) return nullptr;
  const auto found = m_Far->find(number);
  return found == m_Far->end() ? nullptr : &found->second;
}

// Chunks are in a list as long as it has few holes, so that a block with one record at a high index
// costs little.
ChunkStream::Chunk& ChunkStream::MakeChunk(std::uint32_t number) {
  if (Chunk* const chunk = FindChunk(number)) return *chunk;
  if (number > 2 * m_Chunks.size() + 16) {
    if (m_Far == nullptr) m_Far = std::make_unique<std::map<std::uint32_t, Chunk>>();
    return (*m_Far)[number];
  }
  if (number >= m_Chunks.capacity()) {
    m_Chunks.reserve(std::max<std::size_t>(number + 1, m_Chunks.size() * 3 / 2));
  }
  while (m_Chunks.size() <= number) {
    Chunk* const far = FindChunk(static_cast<std::uint32_t>(m_Chunks.size()));
    m_Chunks.emplace_back();
    if (far == nullptr) continue;
    m_Chunks.back() = std::move(*far);
    m_Far->erase(static_cast<std::uint32_t>(m_Chunks.size() - 1));
  }
  return m_Chunks[number];
}

Page* ChunkStream::FindPage(std::uint32_t number) {
  Chunk* const chunk = FindChunk(number);
  if (chunk == nullptr) return nullptr;
  Page* const page = chunk->page != nullptr ? chunk->page.get() : LoadPage(*chunk, number);
  if (page != nullptr) m_Store.GetCache().Use(*page);
  return page;
}

Page* ChunkStream::LoadPage(Chunk& chunk, std::uint32_t number) {
  if (chunk.extent.length == 0) return nullptr;
  const auto size = static_cast<std::size_t>(chunk.extent.length);
  Page& page = MakePage(chunk, number, size);
  const char* problem = nullptr;
  try {
    problem = m_Store.GetPayload().Read(chunk.extent, page.bytes.get());
  } catch (...) {
    m_Store.GetCache().Remove(page);
    chunk.page.reset();
    throw;
  }
  if (problem != nullptr) {
    m_Store.GetCache().Remove(page);
    chunk.page.reset();
    FailDamaged(number, chunk.extent, problem);
  }
  page.size = size;
  return &page;
}

void ChunkStream::FailDamaged(std::uint32_t number, const Extent& extent, const char* what) {
  FED_DataDescriptor descriptor;
  DecodeKey(m_Key, descriptor);
  throw Damage(
      "220300000011",
      FED_MESSAGE("Block %s is damaged: chunk %u of its %s, %Iu bytes at offset %Iu of %s: %s. "
                  "Salvage the database to copy what is intact, or restore a backup.",
                  descriptor.ToString().c_str(), number, NameOf(m_Part), extent.length,
                  extent.offset, m_Store.GetPayload().GetPath().c_str(), what),
      kLocation);
}

Page& ChunkStream::MakePage(Chunk& chunk, std::uint32_t number, std::size_t capacity) {
  m_Store.GetCache().MakeRoom(capacity + sizeof(Page));
  auto page = std::make_unique<Page>(*this, number);
  page->bytes.reset(new unsigned char[capacity + 1]);  // one more: empty records have an address
  page->capacity = capacity;
  m_Store.GetCache().Add(*page);
  chunk.page = std::move(page);
  return *chunk.page;
}

void ChunkStream::Grow(Page& page, std::size_t size) {
  if (size <= page.capacity) return;
  const std::size_t capacity = std::min(std::max(size, 2 * page.capacity), m_ChunkSize);
  m_Store.GetCache().Use(page);
  m_Store.GetCache().MakeRoom(capacity);
  std::unique_ptr<unsigned char[]> bytes(new unsigned char[capacity + 1]);
  std::memcpy(bytes.get(), page.bytes.get(), page.size);
  page.bytes = std::move(bytes);
  m_Store.GetCache().Grew(capacity - page.capacity);
  page.capacity = capacity;
}

const unsigned char* ChunkStream::Find(std::uint32_t number, std::size_t& size) {
  const Page* const page = FindPage(number);
  size = page == nullptr ? 0 : page->size;
  return page == nullptr ? nullptr : page->bytes.get();
}

unsigned char* ChunkStream::FindToChange(std::uint32_t number) {
  Page* const page = FindPage(number);
  if (page == nullptr) return nullptr;
  page->isDirty = true;
  return page->bytes.get();
}

unsigned char* ChunkStream::Touch(std::uint32_t number, std::size_t begin, std::size_t end,
                                  bool zeroed) {
  Page* page = FindPage(number);
  if (page == nullptr) page = &MakePage(MakeChunk(number), number, end);
  Grow(*page, end);
  if (page->size < end) {
    const std::size_t upTo = zeroed ? end : std::max(page->size, begin);
    std::memset(page->bytes.get() + page->size, 0, upTo - page->size);
    page->size = end;
  }
  page->isDirty = true;
  return page->bytes.get();
}

void ChunkStream::Store(std::uint32_t number, const void* bytes, std::size_t size) {
  Chunk& chunk = MakeChunk(number);
  const Extent fresh = m_Store.StoreExtent(bytes, size);
  if (chunk.page != nullptr) m_Store.GetCache().Remove(*chunk.page);
  chunk.page.reset();
  m_Store.ReleaseExtent(chunk.extent, chunk.birth);
  chunk.extent = fresh;
  chunk.birth = 0;
}

void ChunkStream::Read(std::uint64_t offset, void* out, std::uint64_t size) {
  auto* to = static_cast<unsigned char*>(out);
  while (size > 0) {
    const auto number = static_cast<std::uint32_t>(offset / m_ChunkSize);
    const auto at = static_cast<std::size_t>(offset % m_ChunkSize);
    const auto share = static_cast<std::size_t>(std::min<std::uint64_t>(size, m_ChunkSize - at));
    m_Store.GetCache().Step();
    std::size_t there = 0;
    const unsigned char* const bytes = Find(number, there);
    const std::size_t copied = there <= at ? 0 : std::min(share, there - at);
    if (copied > 0) std::memcpy(to, bytes + at, copied);
    std::memset(to + copied, 0, share - copied);
    to += share;
    offset += share;
    size -= share;
  }
}

void ChunkStream::Write(std::uint64_t offset, const void* bytes, std::uint64_t size) {
  const auto* from = static_cast<const unsigned char*>(bytes);
  while (size > 0) {
    const auto number = static_cast<std::uint32_t>(offset / m_ChunkSize);
    const auto at = static_cast<std::size_t>(offset % m_ChunkSize);
    const auto share = static_cast<std::size_t>(std::min<std::uint64_t>(size, m_ChunkSize - at));
    m_Store.GetCache().Step();
    std::memcpy(Touch(number, at, at + share, false) + at, from, share);
    from += share;
    offset += share;
    size -= share;
  }
}

void ChunkStream::WritePage(Chunk& chunk, Page& page) {
  const Extent fresh = page.size > 0 ? m_Store.StoreExtent(page.bytes.get(), page.size) : Extent();
  m_Store.ReleaseExtent(chunk.extent, chunk.birth);
  chunk.extent = fresh;
  chunk.birth = 0;
  page.isDirty = false;
}

void ChunkStream::Flush() {
  ForEach([this](std::uint32_t, Chunk& chunk) {
    if (chunk.page != nullptr && chunk.page->isDirty) WritePage(chunk, *chunk.page);
  });
}

void ChunkStream::Evict(Page& page) {
  Chunk& chunk = *FindChunk(page.number);
  if (page.isDirty) WritePage(chunk, page);
  m_Store.GetCache().Remove(page);
  chunk.page.reset();
}

void ChunkStream::AppendChunks(std::vector<StoredChunk>& out) const {
  const_cast<ChunkStream*>(this)->ForEach([&](std::uint32_t number, Chunk& chunk) {
    if (chunk.extent.length > 0) out.push_back({m_Part, number, chunk.extent});
  });
}

void ChunkStream::Committed(std::uint64_t generation) {
  ForEach([generation](std::uint32_t, Chunk& chunk) {
    if (chunk.birth == 0) chunk.birth = generation;
  });
}

void ChunkStream::Relocate(const StoredChunk& stored, std::uint64_t birth) noexcept {
  Chunk* const chunk = FindChunk(stored.number);
  if (chunk == nullptr) return;
  chunk->extent = stored.extent;
  chunk->birth = birth;
}

void ChunkStream::Clear() noexcept {
  ForEach([this](std::uint32_t, Chunk& chunk) {
    if (chunk.page != nullptr) m_Store.GetCache().Remove(*chunk.page);
    m_Store.ReleaseExtent(chunk.extent, chunk.birth);
  });
  m_Chunks.clear();
  m_Far.reset();
}

}  // namespace qelta
