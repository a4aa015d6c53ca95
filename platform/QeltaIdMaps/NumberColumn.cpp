#include "NumberColumn.h"

namespace qelta {

NumberColumn::NumberColumn(std::uint32_t low, std::uint32_t high)
    : m_Low(low), m_To(std::size_t{high - low} + 1), m_IsKnown(m_To.size()) {}

bool NumberColumn::HasRoomFor(const NumberRun& run) const {
  return run.from >= m_Low && PositionOf(run.LastFrom()) < m_To.size();
}

void NumberColumn::Insert(const NumberRun& run) noexcept {
  const std::size_t first = PositionOf(run.from);
  for (std::uint32_t i = 0; i < run.length; ++i) {
    m_To[first + i] = run.to + i;
    m_IsKnown[first + i] = true;
  }
}

}  // namespace qelta
