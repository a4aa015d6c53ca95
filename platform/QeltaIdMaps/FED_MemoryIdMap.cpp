#include "FED_MemoryIdMap.h"

#include <iterator>
#include <limits>

#include "FED_Failure.h"
#include "FED_Message.h"
#include "FED_OnfMetaData.h"
#include "IdPairs.h"
#include "NameTable.h"

namespace {

using qelta::IdPairs;
using qelta::IdRun;

constexpr char kLocation[] = "|%P|QeltaIdMaps|FED_MemoryIdMap";

// Fetching what a later search reads makes filling with scattered ids three times as fast.
constexpr std::size_t kLookAhead = 16;

// printf knows no 64-bit integer by a name of its own.
long long Printable(std::int64_t index) { return index; }

}  // namespace

FED_MemoryIdMap::FED_MemoryIdMap(FED_IdType type)
    : m_Type(type),
      m_Pairs(std::make_unique<IdPairs>()),
      m_Names(std::make_unique<qelta::NameTable>()) {}

FED_MemoryIdMap::~FED_MemoryIdMap() = default;

void FED_MemoryIdMap::Add(std::int64_t index, std::int32_t id) {
  if (!IsKnown(index, id)) Insert({index, id, 1});
}

void FED_MemoryIdMap::Add(std::int64_t index, std::int32_t id, const std::string& name) {
  const bool known = IsKnown(index, id);
  const bool named = name.empty() || IsNamed(index, name);
  if (!named) m_Names->MakeRoomFor(index, name);
  if (!known) Insert({index, id, 1});
  if (!named) m_Names->Insert(index, name);
}

void FED_MemoryIdMap::Add(const std::int32_t* ids, std::size_t count, std::int64_t firstIndex) {
  CheckRange(ids, count, firstIndex);
  ReserveFor(ids, count, firstIndex);
  for (std::size_t i = 0; i < count;) {
    const std::uint32_t length = IdPairs::CountConsecutive(ids + i, count - i);
    if (count - i > kLookAhead) __builtin_prefetch(m_Pairs->AddressOf(ids[i + kLookAhead]));
    AddRun({firstIndex + static_cast<std::int64_t>(i), ids[i], length});
    i += length;
  }
}

void FED_MemoryIdMap::Add(const std::int32_t* ids, const std::string* names, std::size_t count,
                          std::int64_t firstIndex) {
  if (names == nullptr) return Add(ids, count, firstIndex);
  CheckRange(ids, count, firstIndex);
  ReserveFor(ids, count, firstIndex);
  for (std::size_t i = 0; i < count; ++i) {
    Add(firstIndex + static_cast<std::int64_t>(i), ids[i], names[i]);
  }
}

void FED_MemoryIdMap::AddConsecutive(std::int32_t firstId, std::size_t count,
                                     std::int64_t firstIndex) {
  CheckRange(&firstId, count, firstIndex);
  if (count == 0) return;
  const std::int64_t greatest = std::numeric_limits<std::int32_t>::max();
  if (count - 1 > static_cast<std::uint64_t>(greatest - firstId)) {
    FED_Failure::Throw(
        "110000000215", kLocation, "The %s cannot register %Iu ids from %d on; ids end at %lld.",
        Title().c_str(), static_cast<std::uint64_t>(count), firstId, Printable(greatest));
  }
  AddRun({firstIndex, firstId, static_cast<std::uint32_t>(count)});
}

std::size_t FED_MemoryIdMap::GetCount() const { return m_Pairs->GetCount(); }

std::size_t FED_MemoryIdMap::GetNameCount() const { return m_Names->GetCount(); }

std::vector<IdRun> FED_MemoryIdMap::ListRuns() const { return m_Pairs->ListRuns(); }

bool FED_MemoryIdMap::ContainsName(const std::string& name) const {
  return m_Names->FindIndex(name).has_value();
}

bool FED_MemoryIdMap::ContainsId(std::int32_t id) const {
  return m_Pairs->FindIndex(id).has_value();
}

bool FED_MemoryIdMap::ContainsIndex(std::int64_t index) const {
  return m_Pairs->FindId(index).has_value();
}

bool FED_MemoryIdMap::HasNameAt(std::int64_t index) const {
  return m_Names->FindName(index).has_value();
}

void FED_MemoryIdMap::NameOfIndex(std::int64_t index, std::string& name) const {
  const auto found = m_Names->FindName(index);
  if (!found) {
    FED_Failure::Throw("110000000201", kLocation,
                       "The %s has no name at index %lld (id %d); register the name, or ask "
                       "HasNameAt first.",
                       Title().c_str(), Printable(index), RequireIdAt(index));
  }
  name = *found;
}

std::int32_t FED_MemoryIdMap::IdOfIndex(std::int64_t index) const { return RequireIdAt(index); }

std::int64_t FED_MemoryIdMap::IndexOfName(const std::string& name) const {
  const auto index = m_Names->FindIndex(name);
  if (!index) {
    FED_Failure::Throw("110000000202", kLocation,
                       "The %s does not know the name '%s'; it knows %Iu names. Register the name "
                       "before it is used.",
                       Title().c_str(), name.c_str(),
                       static_cast<std::uint64_t>(m_Names->GetCount()));
  }
  return *index;
}

std::int64_t FED_MemoryIdMap::IndexOfId(std::int32_t id) const {
  const auto index = m_Pairs->FindIndex(id);
  if (!index) {
    FED_Failure::Throw("110000000203", kLocation,
                       "The %s does not know the id %d; it knows %s. Register the id before it is "
                       "used.",
                       Title().c_str(), id, KnownIds().c_str());
  }
  return *index;
}

std::int64_t FED_MemoryIdMap::IndexOfNameForWrite(const std::string& name) {
  if (const auto known = m_Names->FindIndex(name)) return *known;
  if (name.empty()) {
    FED_Failure::Throw("110000000204", kLocation,
                       "The %s cannot register an empty name; give the entity a name.",
                       Title().c_str());
  }
  const std::int64_t index = NextIndex();
  Add(index, NextFreeId(), name);
  return index;
}

std::int64_t FED_MemoryIdMap::IndexOfIdForWrite(std::int32_t id) {
  if (const auto known = m_Pairs->FindIndex(id)) return *known;
  const std::int64_t index = NextIndex();
  Insert({index, id, 1});
  return index;
}

std::int64_t FED_MemoryIdMap::GetMaxIndex() const { return m_Pairs->GetMaxIndex(); }

std::int32_t FED_MemoryIdMap::RequireIdAt(std::int64_t index) const {
  const auto id = m_Pairs->FindId(index);
  if (!id) {
    FED_Failure::Throw("110000000205", kLocation,
                       "The %s has nothing at index %lld; it knows %s at indices up to %lld. The "
                       "record belongs to another model, or its entity was never registered.",
                       Title().c_str(), Printable(index), KnownIds().c_str(),
                       Printable(GetMaxIndex()));
  }
  return *id;
}

std::int64_t FED_MemoryIdMap::NextIndex() const {
  if (GetMaxIndex() == IdPairs::kGreatestIndex) {
    FED_Failure::Throw("110000000206", kLocation,
                       "The %s has no free index behind %lld; register the entity with an index.",
                       Title().c_str(), Printable(GetMaxIndex()));
  }
  return GetMaxIndex() + 1;
}

std::int32_t FED_MemoryIdMap::NextFreeId() {
  while (ContainsId(m_NextFreeId)) {
    if (m_NextFreeId == std::numeric_limits<std::int32_t>::max()) {
      FED_Failure::Throw("110000000207", kLocation,
                         "The %s has no positive id left; it knows %s. Register the entity with an "
                         "id.",
                         Title().c_str(), KnownIds().c_str());
    }
    ++m_NextFreeId;
  }
  return m_NextFreeId;
}

void FED_MemoryIdMap::CheckRange(const std::int32_t* ids, std::size_t count,
                                 std::int64_t firstIndex) const {
  if (count == 0) return;
  if (ids == nullptr) {
    FED_Failure::Throw("110000000208", kLocation,
                       "The %s got no ids to register %Iu entities; pass an array of that length.",
                       Title().c_str(), static_cast<std::uint64_t>(count));
  }
  const std::int64_t most = IdPairs::kGreatestIndex;
  if (firstIndex < 0 || firstIndex > most ||
      count - 1 > static_cast<std::uint64_t>(most - firstIndex)) {
    FED_Failure::Throw("110000000209", kLocation,
                       "The %s cannot register %Iu entities from index %lld on; indices run from 0 "
                       "to %lld.",
                       Title().c_str(), static_cast<std::uint64_t>(count), Printable(firstIndex),
                       Printable(most));
  }
}

void FED_MemoryIdMap::ReserveFor(const std::int32_t* ids, std::size_t count,
                                 std::int64_t firstIndex) {
  // Many small runs must not make the tables grow in small steps, nor a repetition at all.
  if (count <= GetCount() || ContainsIndex(firstIndex)) return;
  m_Pairs->Reserve(ids, count, firstIndex);
}

bool FED_MemoryIdMap::IsKnown(std::int64_t index, std::int32_t id) const {
  if (index < 0 || index > IdPairs::kGreatestIndex) {
    FED_Failure::Throw("110000000210", kLocation,
                       "The %s cannot register id %d at index %lld; indices run from 0 to %lld.",
                       Title().c_str(), id, Printable(index), Printable(IdPairs::kGreatestIndex));
  }
  const auto present = m_Pairs->FindId(index);
  if (present.value_or(id) != id) {
    FED_Failure::Throw("110000000211", kLocation,
                       "The %s cannot register id %d at index %lld, which belongs to id %d.",
                       Title().c_str(), id, Printable(index), *present);
  }
  const auto place = m_Pairs->FindIndex(id);
  if (place.value_or(index) != index) {
    FED_Failure::Throw("110000000212", kLocation,
                       "The %s cannot register id %d at index %lld; it stands at index %lld.",
                       Title().c_str(), id, Printable(index), Printable(*place));
  }
  return present.has_value();
}

bool FED_MemoryIdMap::IsNamed(std::int64_t index, const std::string& name) const {
  const auto place = m_Names->FindIndex(name);
  if (place.value_or(index) != index) {
    FED_Failure::Throw("110000000213", kLocation,
                       "The %s cannot give the name '%s' to index %lld; index %lld has it.",
                       Title().c_str(), name.c_str(), Printable(index), Printable(*place));
  }
  const auto present = m_Names->FindName(index);
  if (!place && present) {
    FED_Failure::Throw("110000000214", kLocation,
                       "The %s cannot give the name '%s' to index %lld, whose name is '%s'.",
                       Title().c_str(), name.c_str(), Printable(index),
                       std::string(*present).c_str());
  }
  return place.has_value();
}

void FED_MemoryIdMap::AddRun(const IdRun& run) {
  if (m_Pairs->IsFree(run)) return Insert(run);
  for (std::uint32_t i = 0; i < run.length; ++i) {
    Add(run.index + i, static_cast<std::int32_t>(run.id + std::int64_t{i}));
  }
}

void FED_MemoryIdMap::Insert(const IdRun& run) {
  m_Pairs->MakeRoomFor(run);
  m_Pairs->Insert(run);
}

std::string FED_MemoryIdMap::Title() const {
  const bool listed = m_Type >= 0 && m_Type < static_cast<int>(std::size(FED_ID_TYPE_INFO));
  return FED_MESSAGE("id map %d (%s)", static_cast<int>(m_Type),
                     listed ? FED_ID_TYPE_INFO[m_Type].name.c_str() : "no id type");
}

std::string FED_MemoryIdMap::KnownIds() const {
  if (GetCount() == 0) return "no ids yet";
  return FED_MESSAGE("%Iu ids from %d to %d", static_cast<std::uint64_t>(GetCount()),
                     m_Pairs->GetLeastId(), m_Pairs->GetGreatestId());
}
