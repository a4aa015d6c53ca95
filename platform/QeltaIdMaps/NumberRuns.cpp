#include "NumberRuns.h"

namespace qelta {
namespace {

constexpr std::size_t kRunsPerBucket = 2;

}  // namespace

NumberRuns::NumberRuns(std::uint32_t low, std::uint32_t high, std::size_t capacity)
    : m_Guide(low, high, capacity / kRunsPerBucket + 1), m_Capacity(capacity) {
  m_Runs.reserve(capacity);
}

bool NumberRuns::HasAnyIn(std::uint32_t first, std::uint32_t length) const {
  const std::size_t count = CountBeginsUpTo(first + (length - 1));
  return count > 0 && m_Runs[count - 1].LastFrom() >= first;
}

void NumberRuns::Insert(const NumberRun& run) noexcept {
  const std::size_t position = CountBeginsUpTo(run.from);
  NumberRun* const previous = position > 0 ? &m_Runs[position - 1] : nullptr;
  const bool isContinued = position < m_Runs.size() && run.IsContinuedBy(m_Runs[position]);
  if (previous != nullptr && previous->IsContinuedBy(run)) {
    previous->length += run.length;
    if (!isContinued) return;
    previous->length += m_Runs[position].length;
    EraseAt(position);
  } else if (isContinued) {
    GrowDownAt(position, run);
  } else {
    InsertAt(position, run);
  }
}

void NumberRuns::InsertAt(std::size_t position, const NumberRun& run) noexcept {
  m_Moves += m_Runs.size() - position + m_Guide.AddRun(run.from);
  m_Runs.insert(m_Runs.begin() + static_cast<std::ptrdiff_t>(position), run);
}

void NumberRuns::EraseAt(std::size_t position) noexcept {
  m_Moves += m_Runs.size() - position + m_Guide.RemoveRun(m_Runs[position].from);
  m_Runs.erase(m_Runs.begin() + static_cast<std::ptrdiff_t>(position));
}

void NumberRuns::GrowDownAt(std::size_t position, const NumberRun& run) noexcept {
  NumberRun& next = m_Runs[position];
  m_Moves += m_Guide.LowerRun(next.from, run.from);
  next = {run.from, run.to, run.length + next.length};
}

}  // namespace qelta
