#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "NumberRun.h"

namespace qelta {

// A translation of numbers that lie close together, as an array: 4 bytes and a bit a number,
// whether it is known or not.
class NumberColumn {
 public:
  // Has room for the numbers from `low` to `high`.
  NumberColumn(std::uint32_t low, std::uint32_t high);

  bool HasRoomFor(const NumberRun& run) const;

  std::optional<std::uint32_t> Find(std::uint32_t from) const {
    const std::size_t position = PositionOf(from);
    if (position >= m_To.size() || !m_IsKnown[position]) return std::nullopt;
    return m_To[position];
  }

  // Needs room for the run.
  void Insert(const NumberRun& run) noexcept;

  template <class Visit>
  void ForEach(Visit visit) const {
    for (std::size_t i = 0; i < m_To.size(); ++i) {
      if (m_IsKnown[i]) visit(NumberRun{m_Low + static_cast<std::uint32_t>(i), m_To[i], 1});
    }
  }

 private:
  // What lies below m_Low wraps to a position far behind the end.
  std::size_t PositionOf(std::uint32_t from) const { return from - m_Low; }

  std::uint32_t m_Low;
  std::vector<std::uint32_t> m_To;
  std::vector<bool> m_IsKnown;
};

}  // namespace qelta
