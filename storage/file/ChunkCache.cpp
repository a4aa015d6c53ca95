#include "ChunkCache.h"

#include <algorithm>
#include <exception>

#include "ChunkStream.h"

namespace qelta {

void ChunkCache::Add(Page& page) {
  page.place = m_Pages.size();
  m_Pages.push_back(&page);
  m_Used += CostOf(page);
  Use(page);
}

void ChunkCache::Remove(Page& page) {
  m_Pages[page.place] = m_Pages.back();
  m_Pages[page.place]->place = page.place;
  m_Pages.pop_back();
  m_Used -= CostOf(page);
}

// Pages go in batches of an eighth of the cache, so that choosing them costs little for each.
void ChunkCache::MakeRoom(std::size_t bytes) {
  if (m_Used + bytes <= m_Capacity) return;
  std::vector<Page*> oldest;
  for (Page* page : m_Pages) {
    if (page->lastUse != m_Now) oldest.push_back(page);
  }
  std::sort(oldest.begin(), oldest.end(),
            [](const Page* a, const Page* b) { return a->lastUse < b->lastUse; });
  const std::uint64_t wanted = m_Used + bytes - m_Capacity + m_Capacity / 8;
  const std::uint64_t goal = m_Used > wanted ? m_Used - wanted : 0;
  std::exception_ptr failure;
  for (Page* page : oldest) {
    if (m_Used <= goal) break;
    try {
      page->stream->Evict(*page);
    } catch (...) {  // full disk, say: pages that are not dirty may do
      if (failure == nullptr) failure = std::current_exception();
    }
  }
  if (failure != nullptr && m_Used + bytes > m_Capacity) std::rethrow_exception(failure);
}

}  // namespace qelta
