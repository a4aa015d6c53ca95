#include "FED_MemoryIdMap.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "FED_Failure.h"
#include "FED_Message.h"
#include "FED_OnfMetaData.h"

namespace {

constexpr char kLocation[] = "|%P|QeltaIdMaps|FED_MemoryIdMap";

// printf knows no 64-bit integer by a name of its own.
long long Printable(std::int64_t index) { return index; }

}  // namespace

FED_MemoryIdMap::FED_MemoryIdMap(FED_IdType type) : m_Type(type) {}

FED_MemoryIdMap::~FED_MemoryIdMap() = default;

void FED_MemoryIdMap::Add(std::int64_t index, std::int32_t id) {
  if (!IsKnown(index, id)) Insert(index, id);
}

void FED_MemoryIdMap::Add(std::int64_t index, std::int32_t id, const std::string& name) {
  const bool known = IsKnown(index, id);
  const bool named = name.empty() || IsNamed(index, name);
  if (!known) Insert(index, id);
  if (!named) SetName(index, name);
}

void FED_MemoryIdMap::Add(const std::int32_t* ids, std::size_t count, std::int64_t firstIndex) {
  Add(ids, nullptr, count, firstIndex);
}

void FED_MemoryIdMap::Add(const std::int32_t* ids, const std::string* names, std::size_t count,
                          std::int64_t firstIndex) {
  if (count == 0) return;
  CheckRun(ids, count, firstIndex);
  ReserveFor(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::int64_t index = firstIndex + static_cast<std::int64_t>(i);
    if (names == nullptr) {
      Add(index, ids[i]);
    } else {
      Add(index, ids[i], names[i]);
    }
  }
}

std::size_t FED_MemoryIdMap::GetCount() const { return m_Entities.size(); }

bool FED_MemoryIdMap::ContainsName(const std::string& name) const {
  return m_IndexOfName.count(name) != 0;
}

bool FED_MemoryIdMap::ContainsId(std::int32_t id) const { return m_IndexOfId.count(id) != 0; }

bool FED_MemoryIdMap::ContainsIndex(std::int64_t index) const {
  return m_Entities.count(index) != 0;
}

bool FED_MemoryIdMap::HasNameAt(std::int64_t index) const {
  const auto found = m_Entities.find(index);
  return found != m_Entities.end() && found->second.name != nullptr;
}

void FED_MemoryIdMap::NameOfIndex(std::int64_t index, std::string& name) const {
  const Entity& entity = EntityAt(index);
  if (entity.name == nullptr) {
    FED_Failure::Throw("110000000201", kLocation,
                       "The %s has no name at index %lld (id %d); register the name, or ask "
                       "HasNameAt first.",
                       Title().c_str(), Printable(index), entity.id);
  }
  name = *entity.name;
}

std::int32_t FED_MemoryIdMap::IdOfIndex(std::int64_t index) const { return EntityAt(index).id; }

std::int64_t FED_MemoryIdMap::IndexOfName(const std::string& name) const {
  const auto found = m_IndexOfName.find(name);
  if (found == m_IndexOfName.end()) {
    FED_Failure::Throw("110000000202", kLocation,
                       "The %s does not know the name '%s'; it knows %Iu names. Register the name "
                       "before it is used.",
                       Title().c_str(), name.c_str(),
                       static_cast<std::uint64_t>(m_IndexOfName.size()));
  }
  return found->second;
}

std::int64_t FED_MemoryIdMap::IndexOfId(std::int32_t id) const {
  const auto found = m_IndexOfId.find(id);
  if (found == m_IndexOfId.end()) {
    FED_Failure::Throw("110000000203", kLocation,
                       "The %s does not know the id %d; it knows %s. Register the id before it is "
                       "used.",
                       Title().c_str(), id, KnownIds().c_str());
  }
  return found->second;
}

std::int64_t FED_MemoryIdMap::IndexOfNameForWrite(const std::string& name) {
  const auto found = m_IndexOfName.find(name);
  if (found != m_IndexOfName.end()) return found->second;
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
  const auto found = m_IndexOfId.find(id);
  if (found != m_IndexOfId.end()) return found->second;
  const std::int64_t index = NextIndex();
  Insert(index, id);
  return index;
}

std::int64_t FED_MemoryIdMap::GetMaxIndex() const { return m_MaxIndex; }

const FED_MemoryIdMap::Entity& FED_MemoryIdMap::EntityAt(std::int64_t index) const {
  const auto found = m_Entities.find(index);
  if (found == m_Entities.end()) {
    FED_Failure::Throw("110000000205", kLocation,
                       "The %s has nothing at index %lld; it knows %s at indices up to %lld. The "
                       "record belongs to another model, or its entity was never registered.",
                       Title().c_str(), Printable(index), KnownIds().c_str(),
                       Printable(m_MaxIndex));
  }
  return found->second;
}

std::int64_t FED_MemoryIdMap::NextIndex() const {
  if (m_MaxIndex == std::numeric_limits<std::int64_t>::max()) {
    FED_Failure::Throw("110000000206", kLocation,
                       "The %s has no free index behind %lld; register the entity with an index.",
                       Title().c_str(), Printable(m_MaxIndex));
  }
  return m_MaxIndex + 1;
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

void FED_MemoryIdMap::CheckRun(const std::int32_t* ids, std::size_t count,
                               std::int64_t firstIndex) const {
  if (ids == nullptr) {
    FED_Failure::Throw("110000000208", kLocation,
                       "The %s got no ids to register %Iu entities; pass an array of that length.",
                       Title().c_str(), static_cast<std::uint64_t>(count));
  }
  const std::int64_t most = std::numeric_limits<std::int64_t>::max();
  if (firstIndex >= 0 && count - 1 > static_cast<std::uint64_t>(most - firstIndex)) {
    FED_Failure::Throw("110000000209", kLocation,
                       "The %s cannot register %Iu entities from index %lld on; indices end at "
                       "%lld.",
                       Title().c_str(), static_cast<std::uint64_t>(count), Printable(firstIndex),
                       Printable(most));
  }
}

void FED_MemoryIdMap::ReserveFor(std::size_t count) {
  // Many small runs must not make the tables grow in small steps.
  if (count < m_Entities.size()) return;
  m_Entities.reserve(m_Entities.size() + count);
  m_IndexOfId.reserve(m_IndexOfId.size() + count);
}

bool FED_MemoryIdMap::IsKnown(std::int64_t index, std::int32_t id) const {
  if (index < 0) {
    FED_Failure::Throw("110000000210", kLocation,
                       "The %s cannot register id %d at index %lld; indices count from 0.",
                       Title().c_str(), id, Printable(index));
  }
  const auto entity = m_Entities.find(index);
  if (entity != m_Entities.end() && entity->second.id != id) {
    FED_Failure::Throw("110000000211", kLocation,
                       "The %s cannot register id %d at index %lld, which belongs to id %d.",
                       Title().c_str(), id, Printable(index), entity->second.id);
  }
  const auto place = m_IndexOfId.find(id);
  if (place != m_IndexOfId.end() && place->second != index) {
    FED_Failure::Throw("110000000212", kLocation,
                       "The %s cannot register id %d at index %lld; it stands at index %lld.",
                       Title().c_str(), id, Printable(index), Printable(place->second));
  }
  return entity != m_Entities.end();
}

bool FED_MemoryIdMap::IsNamed(std::int64_t index, const std::string& name) const {
  const auto place = m_IndexOfName.find(name);
  if (place != m_IndexOfName.end() && place->second != index) {
    FED_Failure::Throw("110000000213", kLocation,
                       "The %s cannot give the name '%s' to index %lld; index %lld has it.",
                       Title().c_str(), name.c_str(), Printable(index), Printable(place->second));
  }
  if (place == m_IndexOfName.end() && HasNameAt(index)) {
    FED_Failure::Throw("110000000214", kLocation,
                       "The %s cannot give the name '%s' to index %lld, whose name is '%s'.",
                       Title().c_str(), name.c_str(), Printable(index),
                       EntityAt(index).name->c_str());
  }
  return place != m_IndexOfName.end();
}

void FED_MemoryIdMap::Insert(std::int64_t index, std::int32_t id) {
  const auto entity = m_Entities.emplace(index, Entity{id, nullptr}).first;
  try {
    m_IndexOfId.emplace(id, index);
  } catch (...) {
    m_Entities.erase(entity);
    throw;
  }
  const bool first = m_Entities.size() == 1;
  m_LeastId = first ? id : std::min(m_LeastId, id);
  m_GreatestId = first ? id : std::max(m_GreatestId, id);
  m_MaxIndex = std::max(m_MaxIndex, index);
}

void FED_MemoryIdMap::SetName(std::int64_t index, const std::string& name) {
  const auto key = m_IndexOfName.emplace(name, index).first;
  m_Entities.at(index).name = &key->first;
}

std::string FED_MemoryIdMap::Title() const {
  const bool listed = m_Type >= 0 && m_Type < static_cast<int>(std::size(FED_ID_TYPE_INFO));
  return FED_MESSAGE("id map %d (%s)", static_cast<int>(m_Type),
                     listed ? FED_ID_TYPE_INFO[m_Type].name.c_str() : "no id type");
}

std::string FED_MemoryIdMap::KnownIds() const {
  if (m_Entities.empty()) return "no ids yet";
  return FED_MESSAGE("%Iu ids from %d to %d", static_cast<std::uint64_t>(m_Entities.size()),
                     m_LeastId, m_GreatestId);
}
