#include "FrdIdIndex.h"

#include <algorithm>

namespace qelta {

std::int32_t FrdIdIndex::Find(std::int32_t id) const {
  const auto place = static_cast<std::size_t>(id);
  if (place < m_Table.size() && m_Table[place] != kUnknown) return m_Table[place];
  if (m_Stray.empty()) return kUnknown;
  const auto stray = m_Stray.find(id);
  return stray == m_Stray.end() ? kUnknown : stray->second;
}

std::int32_t FrdIdIndex::FindOrAdd(std::int32_t id) {
  const std::int32_t known = Find(id);
  if (known != kUnknown) return known;
  const auto index = static_cast<std::int32_t>(m_Count);
  Store(id, index);
  ++m_Count;
  return index;
}

void FrdIdIndex::Store(std::int32_t id, std::int32_t index) {
  constexpr std::size_t kAlwaysInTable = std::size_t{1} << 16;
  constexpr std::size_t kTablePerId = 8;
  const auto place = static_cast<std::size_t>(id);
  const std::size_t limit = std::max(kAlwaysInTable, kTablePerId * m_Count);
  if (place >= limit) {
    m_Stray.emplace(id, index);
    return;
  }
  if (place >= m_Table.size()) {
    m_Table.resize(std::min(limit, std::max(place + 1, 2 * m_Table.size())), kUnknown);
  }
  m_Table[place] = index;
}

bool FrdSeenIndices::Mark(std::int32_t index) {
  const auto word = static_cast<std::size_t>(index) / 64;
  const std::uint64_t bit = std::uint64_t{1} << (static_cast<std::size_t>(index) % 64);
  if (word >= m_Words.size()) m_Words.resize(std::max(word + 1, 2 * m_Words.size()));
  const bool isNew = (m_Words[word] & bit) == 0;
  m_Words[word] |= bit;
  return isNew;
}

}  // namespace qelta
