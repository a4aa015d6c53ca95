#include "NumberSlots.h"

namespace qelta {

// At most three of four slots are taken.
NumberSlots::NumberSlots(std::size_t capacity)
    : m_Slots(capacity + capacity / 3 + 1), m_Room(capacity) {}

void NumberSlots::Insert(const NumberRun& run) noexcept {
  for (std::uint32_t i = 0; i < run.length; ++i) InsertPair(run.from + i, run.to + i);
  m_Room -= run.length;
}

void NumberSlots::InsertPair(std::uint32_t from, std::uint32_t to) noexcept {
  std::size_t position = HomeOf(from);
  while (!m_Slots[position].IsFree()) position = Next(position);
  m_Slots[position].from = from;
  m_Slots[position].to = to;
}

}  // namespace qelta
