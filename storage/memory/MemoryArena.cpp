#include "MemoryArena.h"

#include <algorithm>
#include <cstring>

namespace qelta {
namespace {

constexpr std::size_t kSmallestChunk = 256;
constexpr std::size_t kLargestChunk = std::size_t{64} * 1024;

}  // namespace

std::uint64_t MemoryArena::Store(Kind kind, const void* data, std::size_t bytes) {
  if (m_Entries.size() == m_Entries.capacity()) m_Entries.reserve(2 * m_Entries.size() + 4);
  unsigned char* const place = Allocate(bytes);
  if (bytes > 0) std::memcpy(place, data, bytes);
  m_Entries.push_back({place, bytes, kind});
  return m_Entries.size();
}

bool MemoryArena::Find(Kind kind, std::uint64_t handle, Content& out) const {
  out = {nullptr, 0};
  if (handle == 0) return true;
  if (handle > m_Entries.size()) return false;
  const Entry& entry = m_Entries[static_cast<std::size_t>(handle - 1)];
  if (entry.kind != kind) return false;
  out = {entry.data, entry.bytes};
  return true;
}

// Chunks grow with the number of contents; what is large gets a chunk of its own.
unsigned char* MemoryArena::Allocate(std::size_t bytes) {
  if (bytes > m_FreeBytes) {
    const std::size_t usual = std::clamp(m_Entries.size() * 16, kSmallestChunk, kLargestChunk);
    const std::size_t size = std::max(usual, bytes);
    std::unique_ptr<unsigned char[]> chunk(new unsigned char[size]);
    unsigned char* const start = chunk.get();
    m_Chunks.push_back(std::move(chunk));
    if (bytes >= usual) return start;
    m_Free = start;
    m_FreeBytes = size;
  }
  unsigned char* const place = m_Free;
  m_Free += bytes;
  m_FreeBytes -= bytes;
  return place;
}

}  // namespace qelta
