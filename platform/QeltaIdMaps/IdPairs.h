#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "IdRun.h"
#include "NumberMap.h"

namespace qelta {

// Which id stands at which index, both ways. Indices run from 0 to kGreatestIndex.
class IdPairs {
 public:
  // Blocks keep references as signed 32-bit indices.
  static constexpr std::int64_t kGreatestIndex = std::numeric_limits<std::int32_t>::max();

  std::size_t GetCount() const { return m_IdOfIndex.GetCount(); }
  std::int64_t GetMaxIndex() const;
  // Meaningless where there are none.
  std::int32_t GetLeastId() const { return IdOf(m_IndexOfId.GetLow()); }
  std::int32_t GetGreatestId() const { return IdOf(m_IndexOfId.GetHigh()); }

  // Any index may be asked for.
  std::optional<std::int32_t> FindId(std::int64_t index) const;
  std::optional<std::int64_t> FindIndex(std::int32_t id) const;
  // What to prefetch before FindIndex or IsFree, or null.
  const void* AddressOf(std::int32_t id) const { return m_IndexOfId.AddressOf(NumberOf(id)); }
  // In ascending order of the indices, as few as can be.
  std::vector<IdRun> ListRuns() const;
  // True when neither an index nor an id of the run is known.
  bool IsFree(const IdRun& run) const;

  // Makes exactly the room that ids[0 .. count - 1] need at the indices from firstIndex on.
  void Reserve(const std::int32_t* ids, std::size_t count, std::int64_t firstIndex);
  void MakeRoomFor(const IdRun& run);
  // Needs room for the run, which is free.
  void Insert(const IdRun& run) noexcept;

  // How many of ids[0 .. count - 1], of which there are some, count up from the first.
  static std::uint32_t CountConsecutive(const std::int32_t* ids, std::size_t count);

 private:
  static NumberRun ByIndex(const IdRun& run);
  static NumberRun ById(const IdRun& run);

  // Ids as numbers in the same order.
  static std::uint32_t NumberOf(std::int32_t id) {
    return static_cast<std::uint32_t>(id) ^ 0x80000000u;
  }
  static std::int32_t IdOf(std::uint32_t number) {
    return static_cast<std::int32_t>(number ^ 0x80000000u);
  }

  NumberMap m_IdOfIndex;
  NumberMap m_IndexOfId;
};

}  // namespace qelta
