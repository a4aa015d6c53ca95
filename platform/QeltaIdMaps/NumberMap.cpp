#include "NumberMap.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qelta {
namespace {

constexpr std::size_t kFewRuns = 64;
constexpr std::size_t kNumbersPerRun = 8;    // fewer, and runs save nothing worth a search
constexpr std::size_t kMovesPerNumber = 64;  // more, and the order of the runs costs too much
constexpr std::size_t kSpread = 4;           // a new array has at most so many places a number

std::size_t Range(const NumberMap::Extent& extent) {
  return std::size_t{extent.high - extent.low} + 1;
}

}  // namespace

bool NumberMap::HasAnyIn(std::uint32_t first, std::uint32_t length) const {
  if (const auto* runs = std::get_if<NumberRuns>(&m_Form)) return runs->HasAnyIn(first, length);
  for (std::uint32_t i = 0; i < length; ++i) {
    if (Find(first + i)) return true;
  }
  return false;
}

void NumberMap::Reserve(const Extent& added) {
  const Extent extent = ExtentWith(added);
  ChangeTo(MakeForm(extent, extent));
}

void NumberMap::MakeRoomFor(const NumberRun& run) {
  if (HasRoomFor(run)) return;
  const Extent extent = ExtentWith({run.from, run.LastFrom(), run.length, 1});
  ChangeTo(MakeForm(extent, Stretch(extent)));
}

void NumberMap::Insert(const NumberRun& run) noexcept {
  Visit(m_Form, [&](auto& form) { form.Insert(run); });
  m_Low = m_Count == 0 ? run.from : std::min(m_Low, run.from);
  m_High = m_Count == 0 ? run.LastFrom() : std::max(m_High, run.LastFrom());
  m_Count += run.length;
}

bool NumberMap::HasRoomFor(const NumberRun& run) const {
  if (const auto* runs = std::get_if<NumberRuns>(&m_Form)) {
    return runs->HasRoom() && KeepsRuns({m_Low, m_High, m_Count, runs->GetSize()});
  }
  if (const auto* column = std::get_if<NumberColumn>(&m_Form)) return column->HasRoomFor(run);
  return std::get<NumberSlots>(m_Form).HasRoomFor(run);
}

bool NumberMap::KeepsRuns(const Extent& extent) const {
  const auto* runs = std::get_if<NumberRuns>(&m_Form);
  if (runs == nullptr) return false;
  if (extent.runs <= kFewRuns) return true;
  return extent.runs <= extent.count / kNumbersPerRun &&
         runs->GetMoves() / kMovesPerNumber <= extent.count;
}

NumberMap::Extent NumberMap::ExtentWith(const Extent& added) const {
  if (m_Count == 0) return added;
  const auto* runs = std::get_if<NumberRuns>(&m_Form);
  return {std::min(m_Low, added.low), std::max(m_High, added.high), m_Count + added.count,
          added.runs + (runs == nullptr ? 0 : runs->GetSize())};
}

NumberMap::Extent NumberMap::Stretch(const Extent& extent) const {
  Extent room = extent;
  room.count += extent.count / 2;
  room.runs += extent.runs / 2 + 1;
  if (m_Count == 0) return room;
  // More is to be expected on the side where the numbers leave their present range.
  const std::uint32_t half = (extent.high - extent.low) / 2;
  const std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
  if (extent.low < m_Low) room.low -= std::min(half, extent.low);
  if (extent.high > m_High) room.high += std::min(half, most - extent.high);
  return room;
}

NumberMap::Form NumberMap::MakeForm(const Extent& extent, const Extent& room) const {
  if (KeepsRuns(extent)) return NumberRuns(room.low, room.high, room.runs);
  if (Range(room) / kSpread < extent.count) return NumberColumn(room.low, room.high);
  return NumberSlots(room.count);
}

void NumberMap::ChangeTo(Form form) noexcept {
  Visit(form, [this](auto& to) {
    Visit(m_Form, [&to](const auto& from) {
      from.ForEach([&to](const NumberRun& run) { to.Insert(run); });
    });
  });
  m_Form = std::move(form);
}

}  // namespace qelta
