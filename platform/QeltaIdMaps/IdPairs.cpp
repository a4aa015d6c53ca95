#include "IdPairs.h"

#include <algorithm>

namespace qelta {
namespace {

void Append(const IdRun& run, std::vector<IdRun>& runs) {
  if (!runs.empty()) {
    IdRun& last = runs.back();
    if (last.index + last.length == run.index && last.id + std::int64_t{last.length} == run.id) {
      last.length += run.length;
      return;
    }
  }
  runs.push_back(run);
}

bool IsBefore(const IdRun& a, const IdRun& b) { return a.index < b.index; }

}  // namespace

std::int64_t IdPairs::GetMaxIndex() const {
  return GetCount() == 0 ? -1 : std::int64_t{m_IdOfIndex.GetHigh()};
}

std::optional<std::int32_t> IdPairs::FindId(std::int64_t index) const {
  if (index < 0 || index > kGreatestIndex) return std::nullopt;
  const auto number = m_IdOfIndex.Find(static_cast<std::uint32_t>(index));
  if (!number) return std::nullopt;
  return IdOf(*number);
}

std::optional<std::int64_t> IdPairs::FindIndex(std::int32_t id) const {
  const auto index = m_IndexOfId.Find(NumberOf(id));
  if (!index) return std::nullopt;
  return *index;
}

std::vector<IdRun> IdPairs::ListRuns() const {
  std::vector<IdRun> runs;
  m_IdOfIndex.ForEach([&runs](const NumberRun& run) {
    // The least id does not continue the greatest one.
    const auto length = static_cast<std::uint32_t>(
        std::min(std::uint64_t{run.length}, (std::uint64_t{1} << 32) - run.to));
    Append({run.from, IdOf(run.to), length}, runs);
    if (length < run.length) Append({run.from + length, IdOf(0), run.length - length}, runs);
  });
  if (std::is_sorted(runs.begin(), runs.end(), IsBefore)) return runs;
  std::sort(runs.begin(), runs.end(), IsBefore);
  std::vector<IdRun> joined;
  for (const IdRun& run : runs) Append(run, joined);
  return joined;
}

bool IdPairs::IsFree(const IdRun& run) const {
  return !m_IdOfIndex.HasAnyIn(ByIndex(run).from, run.length) &&
         !m_IndexOfId.HasAnyIn(ById(run).from, run.length);
}

void IdPairs::Reserve(const std::int32_t* ids, std::size_t count, std::int64_t firstIndex) {
  const auto [least, greatest] = std::minmax_element(ids, ids + count);
  std::size_t runs = 0;
  for (std::size_t i = 0; i < count; i += CountConsecutive(ids + i, count - i)) ++runs;
  const auto low = static_cast<std::uint32_t>(firstIndex);
  const auto high = static_cast<std::uint32_t>(low + (count - 1));
  m_IdOfIndex.Reserve({low, high, count, runs});
  m_IndexOfId.Reserve({NumberOf(*least), NumberOf(*greatest), count, runs});
}

void IdPairs::MakeRoomFor(const IdRun& run) {
  m_IdOfIndex.MakeRoomFor(ByIndex(run));
  m_IndexOfId.MakeRoomFor(ById(run));
}

void IdPairs::Insert(const IdRun& run) noexcept {
  m_IdOfIndex.Insert(ByIndex(run));
  m_IndexOfId.Insert(ById(run));
}

std::uint32_t IdPairs::CountConsecutive(const std::int32_t* ids, std::size_t count) {
  std::uint32_t length = 1;
  while (length < count && ids[length] - std::int64_t{ids[length - 1]} == 1) ++length;
  return length;
}

NumberRun IdPairs::ByIndex(const IdRun& run) {
  return {static_cast<std::uint32_t>(run.index), NumberOf(run.id), run.length};
}

NumberRun IdPairs::ById(const IdRun& run) {
  return {NumberOf(run.id), static_cast<std::uint32_t>(run.index), run.length};
}

}  // namespace qelta
