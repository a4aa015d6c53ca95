#include "QeltaPositions.h"

#include <QeltaBulkAccess.h>

#include <algorithm>

namespace qelta {

QeltaPositions::QeltaPositions(const FED_DataBlock& block) {
  FED_IntSetIntvl<int> runs;
  QeltaBulkAccess::PresentRuns(block, runs);
  for (const auto& run : runs) {
    const auto first = static_cast<std::size_t>(run.lo);
    const std::size_t count = static_cast<std::size_t>(run.hi) - first + 1;
    m_Runs.push_back({first, m_Count, count});
    m_Count += count;
  }
}

std::optional<std::size_t> QeltaPositions::Find(std::size_t index) const {
  const auto behind =
      std::upper_bound(m_Runs.begin(), m_Runs.end(), index,
                       [](std::size_t value, const Run& run) { return value < run.index; });
  if (behind == m_Runs.begin()) return std::nullopt;
  const Run& run = *std::prev(behind);
  if (index - run.index >= run.count) return std::nullopt;
  return run.position + (index - run.index);
}

std::size_t QeltaPositions::IndexAt(std::size_t position) const {
  const auto behind =
      std::upper_bound(m_Runs.begin(), m_Runs.end(), position,
                       [](std::size_t value, const Run& run) { return value < run.position; });
  const Run& run = *std::prev(behind);
  return run.index + (position - run.position);
}

}  // namespace qelta
