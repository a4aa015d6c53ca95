#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "NumberRun.h"

namespace qelta {

// A translation of scattered numbers, as a hash table with open addressing: 11 bytes a number when
// it is full. A number may stand in it several times; FindWhere chooses. The pair of the two
// greatest numbers cannot be stored.
class NumberSlots {
 public:
  NumberSlots() = default;
  // Has room for `capacity` numbers.
  explicit NumberSlots(std::size_t capacity);

  bool HasRoomFor(const NumberRun& run) const { return run.length <= m_Room; }

  std::optional<std::uint32_t> Find(std::uint32_t from) const {
    return FindWhere(from, [](std::uint32_t) { return true; });
  }

  // The first number that `from` is translated to and that `isMeant` accepts.
  template <class Test>
  std::optional<std::uint32_t> FindWhere(std::uint32_t from, Test isMeant) const {
    if (m_Slots.empty()) return std::nullopt;
    for (std::size_t i = HomeOf(from); !m_Slots[i].IsFree(); i = Next(i)) {
      if (m_Slots[i].from == from && isMeant(m_Slots[i].to)) return m_Slots[i].to;
    }
    return std::nullopt;
  }

  // Where a search for `from` begins to read.
  const void* AddressOf(std::uint32_t from) const { return m_Slots.data() + HomeOf(from); }

  // Needs room for the run.
  void Insert(const NumberRun& run) noexcept;

  template <class Visit>
  void ForEach(Visit visit) const {
    for (const Slot& slot : m_Slots) {
      if (!slot.IsFree()) visit(NumberRun{slot.from, slot.to, 1});
    }
  }

 private:
  static constexpr std::uint32_t kNothing = 0xffffffff;
  struct Slot {
    std::uint32_t from = kNothing;
    std::uint32_t to = kNothing;
    bool IsFree() const { return from == kNothing && to == kNothing; }
  };

  std::size_t HomeOf(std::uint32_t from) const;
  std::size_t Next(std::size_t position) const {
    return position + 1 == m_Slots.size() ? 0 : position + 1;
  }
  void InsertPair(std::uint32_t from, std::uint32_t to) noexcept;

  std::vector<Slot> m_Slots;  // never full, so that every search ends
  std::size_t m_Room = 0;
};

// Inline, for the searches: the number is scrambled, then scaled to the number of slots.
inline std::size_t NumberSlots::HomeOf(std::uint32_t from) const {
  std::uint32_t hash = from;
  hash = (hash ^ (hash >> 16)) * 0x85ebca6bu;
  hash = (hash ^ (hash >> 13)) * 0xc2b2ae35u;
  hash ^= hash >> 16;
  return static_cast<std::size_t>(hash * std::uint64_t{m_Slots.size()} >> 32);
}

}  // namespace qelta
