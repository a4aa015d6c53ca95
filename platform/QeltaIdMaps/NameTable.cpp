#include "NameTable.h"

#include <functional>
#include <utility>

#include "IdPairs.h"

namespace qelta {
namespace {

// Grows by half at least, in one step.
template <class Container>
void MakeRoomIn(Container& container, std::size_t added) {
  const std::size_t needed = container.size() + added;
  if (needed > container.capacity()) container.reserve(needed + needed / 2);
}

}  // namespace

std::optional<std::string_view> NameTable::FindName(std::int64_t index) const {
  if (index < 0 || index > IdPairs::kGreatestIndex) return std::nullopt;
  const auto place = m_PlaceOfIndex.Find(static_cast<std::uint32_t>(index));
  if (!place) return std::nullopt;
  const std::size_t begin = *place == 0 ? 0 : m_Ends[*place - 1];
  return std::string_view(m_Texts).substr(begin, m_Ends[*place] - begin);
}

std::optional<std::int64_t> NameTable::FindIndex(std::string_view name) const {
  const auto isMeant = [&](std::uint32_t index) { return FindName(index) == name; };
  const auto index = m_IndexOfHash.FindWhere(Hashed(0, name).from, isMeant);
  if (!index) return std::nullopt;
  return *index;
}

void NameTable::MakeRoomFor(std::int64_t index, std::string_view name) {
  MakeRoomIn(m_Texts, name.size());
  MakeRoomIn(m_Ends, 1);
  m_PlaceOfIndex.MakeRoomFor(PlaceOf(index));
  if (m_IndexOfHash.HasRoomFor(Hashed(index, name))) return;
  NumberSlots larger(GetCount() + GetCount() / 2 + 1);
  m_IndexOfHash.ForEach([&](const NumberRun& pair) { larger.Insert(pair); });
  m_IndexOfHash = std::move(larger);
}

void NameTable::Insert(std::int64_t index, std::string_view name) noexcept {
  m_PlaceOfIndex.Insert(PlaceOf(index));
  m_IndexOfHash.Insert(Hashed(index, name));
  m_Texts.append(name);
  m_Ends.push_back(m_Texts.size());
}

NumberRun NameTable::PlaceOf(std::int64_t index) const {
  return {static_cast<std::uint32_t>(index), static_cast<std::uint32_t>(m_Ends.size()), 1};
}

NumberRun NameTable::Hashed(std::int64_t index, std::string_view name) {
  const auto hash = std::hash<std::string_view>()(name);
  return {static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(index), 1};
}

}  // namespace qelta
