#include "Hdf5IdMaps.h"

#include <FED_Failure.h>
#include <FED_MemoryIdMap.h>
#include <FED_OnfMetaData.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Hdf5Column.h"
#include "Hdf5ColumnReader.h"
#include "Hdf5Names.h"

namespace qelta {
namespace {

constexpr std::size_t kBatch = std::size_t{1} << 14;

// Calls visit(index, id) for every entity, in ascending order of the indices.
template <class Visit>
void ForEachEntity(const FED_IdMap& map, Visit visit) {
  if (const auto* const memory = dynamic_cast<const FED_MemoryIdMap*>(&map)) {
    for (const IdRun& run : memory->ListRuns()) {
      for (std::uint32_t i = 0; i < run.length; ++i) {
        visit(run.index + i, static_cast<std::int32_t>(run.id + std::int64_t{i}));
      }
    }
    return;
  }
  for (std::int64_t index = 0; index <= map.GetMaxIndex(); ++index) {
    if (map.ContainsIndex(index)) visit(index, map.IdOfIndex(index));
  }
}

// Empty when there is none.
std::string NameAt(const FED_IdMap& map, std::int64_t index) {
  std::string name;
  if (map.HasNameAt(index)) map.NameOfIndex(index, name);
  return name;
}

void WriteNames(hid_t group, const FED_IdMap& map) {
  bool hasNames = false, hasNul = false;
  ForEachEntity(map, [&](std::int64_t index, std::int32_t) {
    const std::string name = NameAt(map, index);
    hasNames = hasNames || !name.empty();
    hasNul = hasNul || name.find('\0') != std::string::npos;
  });
  if (!hasNames) return;
  Hdf5TextColumn names(group, hdf5::kName, hasNul, {});
  ForEachEntity(map, [&](std::int64_t index, std::int32_t) { names.Append(NameAt(map, index)); });
  names.Close();
}

void WriteMap(hid_t group, const FED_IdMap& map) {
  Hdf5Column indices(group, hdf5::kIndex, H5T_NATIVE_INT32, {});
  Hdf5Column ids(group, hdf5::kId, H5T_NATIVE_INT32, {});
  ForEachEntity(map, [&](std::int64_t index, std::int32_t id) {
    const auto place = static_cast<std::int32_t>(index);
    indices.Append(&place, 1);
    ids.Append(&id, 1);
  });
  indices.Close();
  ids.Close();
  WriteNames(group, map);
}

// Consecutive indices at a time, which is the quickest way.
void AddEntities(FED_MemoryIdMap& map, const std::vector<std::int32_t>& indices,
                 const std::vector<std::int32_t>& ids, const std::vector<std::string>& names) {
  for (std::size_t first = 0; first < indices.size();) {
    std::size_t end = first + 1;
    while (end < indices.size() && indices[end] - 1 == indices[end - 1]) ++end;
    map.Add(&ids[first], names.empty() ? nullptr : &names[first], end - first, indices[first]);
    first = end;
  }
}

void ReadMap(hid_t group, FED_MemoryIdMap& map) {
  Hdf5ColumnReader indexColumn(group, hdf5::kIndex, H5T_NATIVE_INT32);
  Hdf5ColumnReader idColumn(group, hdf5::kId, H5T_NATIVE_INT32);
  const std::size_t rows = indexColumn.GetRows();
  idColumn.RequireRows(rows);
  std::unique_ptr<Hdf5TextReader> nameColumn;
  if (HasLink(group, hdf5::kName))
    nameColumn = std::make_unique<Hdf5TextReader>(group, hdf5::kName, rows);
  for (std::size_t done = 0; done < rows;) {
    const std::size_t count = std::min(kBatch, rows - done);
    std::vector<std::int32_t> indices(count), ids(count);
    std::vector<std::string> names(nameColumn ? count : 0);
    indexColumn.Read(indices.data(), count);
    idColumn.Read(ids.data(), count);
    for (std::string& name : names) name = nameColumn->Read();
    AddEntities(map, indices, ids, names);
    done += count;
  }
}

std::uint64_t Count(const FED_IdMap& map) {
  std::uint64_t count = 0;
  ForEachEntity(map, [&count](std::int64_t, std::int32_t) { ++count; });
  return count;
}

// What an entity is recognised by in another map.
bool GoesByName(FED_IdType type, const std::string& name) {
  return FED_ID_TYPE_INFO[type].named != 0 && !name.empty();
}

// The index in `to`, which learns the entity, with id and name if both are free.
std::int64_t Learn(FED_IdMap& to, std::int32_t id, const std::string& name, bool byName) {
  auto* const memory = dynamic_cast<FED_MemoryIdMap*>(&to);
  if (memory != nullptr && !to.ContainsId(id) && (name.empty() || !to.ContainsName(name))) {
    const std::int64_t index = to.GetMaxIndex() + 1;
    memory->Add(index, id, name);
    return index;
  }
  return byName ? to.IndexOfNameForWrite(name) : to.IndexOfIdForWrite(id);
}

// Whether the two have the same entities at the same indices then.
bool Teach(FED_IdType type, const FED_IdMap& from, FED_IdMap& to) {
  auto* const exact = to.GetMaxIndex() < 0 ? dynamic_cast<FED_MemoryIdMap*>(&to) : nullptr;
  bool areSame = true;
  ForEachEntity(from, [&](std::int64_t index, std::int32_t id) {
    const std::string name = NameAt(from, index);
    if (exact != nullptr) {
      exact->Add(index, id, name);
    } else {
      areSame = Learn(to, id, name, GoesByName(type, name)) == index && areSame;
    }
  });
  return areSame && Count(from) == Count(to);
}

}  // namespace

void WriteIdMaps(hid_t group, const FED_IdMapsPool& maps) {
  for (int i = ID_TYPE_NODE; i < ID_TYPE_RECORD_INDEX; ++i) {
    const FED_IdMap& map = maps.GetMap(static_cast<FED_IdType>(i));
    if (map.GetMaxIndex() >= 0) WriteMap(MakeGroup(group, FED_ID_TYPE_INFO[i].name), map);
  }
}

Hdf5IdMaps::Hdf5IdMaps(hid_t group) {
  m_AreSame.fill(true);
  for (int i = ID_TYPE_NODE; i < ID_TYPE_RECORD_INDEX; ++i) {
    const std::string& name = FED_ID_TYPE_INFO[i].name;
    if (!HasLink(group, name)) continue;
    try {
      auto& map = dynamic_cast<FED_MemoryIdMap&>(m_Maps.GetMap(static_cast<FED_IdType>(i)));
      ReadMap(OpenGroup(group, name), map);
    } catch (const Hdf5Problem& problem) {
      throw Hdf5Problem{"id map " + name + ": " + problem.text, problem.isSystem};
    } catch (const FED_Failure& failure) {
      throw Hdf5Problem{failure.what()};
    }
  }
}

void Hdf5IdMaps::TeachTo(FED_IdMapsPool& target) {
  m_Target = target;
  for (int i = ID_TYPE_NODE; i < ID_TYPE_RECORD_INDEX; ++i) {
    const auto type = static_cast<FED_IdType>(i);
    m_AreSame[static_cast<std::size_t>(i)] = Teach(type, m_Maps.GetMap(type), target.GetMap(type));
  }
}

bool Hdf5IdMaps::Knows(FED_IdType type, std::int32_t index) const {
  return m_Maps.GetMap(type).ContainsIndex(index);
}

std::int32_t Hdf5IdMaps::Translate(FED_IdType type, std::int32_t index) const {
  if (AreSame(type)) return index;
  const FED_IdMap& from = m_Maps.GetMap(type);
  if (!from.ContainsIndex(index)) {
    throw Hdf5Problem{"the id map of " + FED_ID_TYPE_INFO[type].name +
                      "s in the file has nothing at index " + std::to_string(index) +
                      ", and the target numbers otherwise"};
  }
  const std::string name = NameAt(from, index);
  const FED_IdMap& to = m_Target.GetMap(type);
  return static_cast<std::int32_t>(GoesByName(type, name) ? to.IndexOfName(name)
                                                          : to.IndexOfId(from.IdOfIndex(index)));
}

}  // namespace qelta
