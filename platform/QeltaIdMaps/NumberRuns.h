#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "NumberRun.h"
#include "RunGuide.h"

namespace qelta {

// A translation of numbers as runs in ascending order: 14 bytes a run, however long it is.
class NumberRuns {
 public:
  NumberRuns() = default;
  // Has room for `capacity` runs, which begin mostly from `low` to `high`.
  NumberRuns(std::uint32_t low, std::uint32_t high, std::size_t capacity);

  std::size_t GetSize() const { return m_Runs.size(); }
  bool HasRoom() const { return m_Runs.size() < m_Capacity; }

  // How many runs and counts were moved so far to keep order.
  std::uint64_t GetMoves() const { return m_Moves; }

  std::optional<std::uint32_t> Find(std::uint32_t from) const;
  bool HasAnyIn(std::uint32_t first, std::uint32_t length) const;

  // Needs room for one run; nothing in `run` may be known.
  void Insert(const NumberRun& run) noexcept;

  template <class Visit>
  void ForEach(Visit visit) const {
    for (const NumberRun& run : m_Runs) visit(run);
  }

 private:
  std::size_t CountBeginsUpTo(std::uint32_t number) const;
  void InsertAt(std::size_t position, const NumberRun& run) noexcept;
  void EraseAt(std::size_t position) noexcept;
  void GrowDownAt(std::size_t position, const NumberRun& run) noexcept;

  std::vector<NumberRun> m_Runs;
  RunGuide m_Guide;
  std::size_t m_Capacity = 0;
  std::uint64_t m_Moves = 0;
};

// Inline, for the searches.
inline std::optional<std::uint32_t> NumberRuns::Find(std::uint32_t from) const {
  const std::size_t count = CountBeginsUpTo(from);
  if (count == 0) return std::nullopt;
  const NumberRun& run = m_Runs[count - 1];
  const std::uint32_t offset = from - run.from;
  if (offset >= run.length) return std::nullopt;
  return run.to + offset;
}

inline std::size_t NumberRuns::CountBeginsUpTo(std::uint32_t number) const {
  if (m_Runs.empty()) return 0;
  const auto [first, last] = m_Guide.Narrow(number);
  const NumberRun* const runs = m_Runs.data();
  const auto isBefore = [](std::uint32_t left, const NumberRun& run) { return left < run.from; };
  const NumberRun* const behind = std::upper_bound(runs + first, runs + last, number, isBefore);
  return static_cast<std::size_t>(behind - runs);
}

}  // namespace qelta
