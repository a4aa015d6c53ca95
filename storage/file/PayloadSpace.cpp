#include "PayloadSpace.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <new>

namespace qelta {

PayloadSpace::PayloadSpace(std::uint64_t begin, const std::vector<Range>& used, std::uint64_t end,
                           std::uint64_t generation)
    : m_End(end) {
  const auto hold = [&](std::uint64_t from, std::uint64_t to) {
    if (from < to) m_Held.push_back({{from, to - from}, 0, generation});
  };
  std::uint64_t place = begin;
  for (const Range& range : used) {
    hold(place, range.first);
    place = range.first + range.second;
  }
  hold(place, end);
}

std::uint64_t PayloadSpace::Allocate(std::uint64_t length) {
  const auto fitting = m_FreeBySize.lower_bound({length, 0});
  if (fitting == m_FreeBySize.end()) {
    const std::uint64_t offset = m_End;
    m_End += length;
    return offset;
  }
  const auto [room, offset] = *fitting;
  const auto place = m_Free.find(offset);
  Remove(place);
  if (room > length) Free({offset + length, room - length});
  return offset;
}

void PayloadSpace::Remove(std::map<std::uint64_t, std::uint64_t>::iterator place) {
  m_FreeBySize.erase({place->second, place->first});
  m_Free.erase(place);
}

void PayloadSpace::Free(Range range) {
  auto next = m_Free.lower_bound(range.first);
  if (next != m_Free.end() && range.first + range.second == next->first) {
    range.second += next->second;
    Remove(next++);
  }
  if (next != m_Free.begin()) {
    const auto before = std::prev(next);
    if (before->first + before->second == range.first) {
      range = {before->first, before->second + range.second};
      Remove(before);
    }
  }
  if (range.first + range.second == m_End) {
    m_End = range.first;
    return;
  }
  m_FreeBySize.insert({range.second, range.first});
  try {
    m_Free.insert(range);
  } catch (...) {
    m_FreeBySize.erase({range.second, range.first});
    throw;
  }
}

void PayloadSpace::Release(const Extent& extent, std::uint64_t birth) noexcept {
  if (extent.length == 0) return;
  const Range range(extent.offset, extent.length);
  try {
    if (birth > 0) {
      m_Released.push_back({range, birth, 0});
    } else if (m_IsDoubtful) {
      m_Doubtful.push_back(range);
    } else {
      Free(range);
    }
  } catch (const std::bad_alloc&) {  // the next opening finds it again
  }
}

void PayloadSpace::Committed(std::uint64_t generation) noexcept {
  m_IsDoubtful = false;
  try {
    m_Held.reserve(m_Held.size() + m_Released.size());
    for (Held& held : m_Released) {
      held.death = generation;
      m_Held.push_back(held);
    }
    for (const Range& range : m_Doubtful) Free(range);
  } catch (const std::bad_alloc&) {
  }
  m_Released.clear();
  m_Doubtful.clear();
}

void PayloadSpace::Reclaim(const std::vector<std::uint64_t>& readers) noexcept {
  const auto isSeen = [&](const Held& held) {
    return std::any_of(readers.begin(), readers.end(), [&](std::uint64_t generation) {
      return held.birth <= generation && generation < held.death;
    });
  };
  const auto firstFree = std::partition(m_Held.begin(), m_Held.end(), isSeen);
  try {
    for (auto held = firstFree; held != m_Held.end(); ++held) Free(held->range);
  } catch (const std::bad_alloc&) {
  }
  m_Held.erase(firstFree, m_Held.end());
}

std::uint64_t PayloadSpace::GetOldestHeld() const {
  std::uint64_t oldest = std::numeric_limits<std::uint64_t>::max();
  for (const Held& held : m_Held) oldest = std::min(oldest, held.birth);
  return oldest;
}

}  // namespace qelta
