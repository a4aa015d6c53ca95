#include "IdMapCode.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

#include "ByteCode.h"
#include "Damage.h"
#include "FED_Failure.h"
#include "FED_MemoryIdMap.h"
#include "FED_OnfMetaData.h"

namespace qelta {
namespace {

constexpr char kLocation[] = "|%P|QeltaFileStorage|IdMapCode";
constexpr std::int64_t kGreatest = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t kRunSize = 12;
constexpr std::size_t kLeastNameSize = 9;

// Consecutive ids at consecutive indices.
struct Run {
  std::int64_t index;
  std::int64_t id;
  std::int64_t length;
};

struct Name {
  std::int64_t index;
  std::string text;
};

// All entities of a map: by index, ascending, with as few runs as can be.
struct Entities {
  std::vector<Run> runs;
  std::vector<Name> names;

  std::int64_t GetMaxIndex() const { return runs.back().index + runs.back().length - 1; }
};

void Append(std::vector<Run>& runs, std::int64_t index, std::int64_t id) {
  if (!runs.empty()) {
    Run& last = runs.back();
    if (last.index + last.length == index && last.id + last.length == id) {
      ++last.length;
      return;
    }
  }
  runs.push_back({index, id, 1});
}

std::vector<Run> ListRuns(const FED_IdMap& map) {
  std::vector<Run> runs;
  if (const auto* const memory = dynamic_cast<const FED_MemoryIdMap*>(&map)) {
    for (const IdRun& run : memory->ListRuns()) runs.push_back({run.index, run.id, run.length});
    return runs;
  }
  const std::int64_t last = map.GetMaxIndex();
  for (std::int64_t index = 0; index <= last; ++index) {
    if (map.ContainsIndex(index)) Append(runs, index, map.IdOfIndex(index));
  }
  return runs;
}

std::vector<Name> ListNames(const FED_IdMap& map, const std::vector<Run>& runs) {
  std::vector<Name> names;
  const auto* const memory = dynamic_cast<const FED_MemoryIdMap*>(&map);
  if (memory != nullptr && memory->GetNameCount() == 0) return names;
  for (const Run& run : runs) {
    for (std::int64_t index = run.index; index < run.index + run.length; ++index) {
      if (!map.HasNameAt(index)) continue;
      std::string name;
      map.NameOfIndex(index, name);
      if (!name.empty()) names.push_back({index, std::move(name)});
    }
  }
  return names;
}

Entities List(const FED_IdMap& map) {
  std::vector<Run> runs = ListRuns(map);
  std::vector<Name> names = ListNames(map, runs);
  return {std::move(runs), std::move(names)};
}

bool TakeRun(ByteSource& source, std::int64_t end, Run& run) {
  std::uint32_t index = 0;
  std::uint32_t length = 0;
  std::int32_t id = 0;
  if (!source.Take(index) || !source.Take(length) || !source.Take(id)) return false;
  run = {index, id, length};
  return run.index >= end && run.length > 0 && run.index <= kGreatest - (run.length - 1) &&
         run.id <= kGreatest - (run.length - 1);
}

bool TakeName(ByteSource& source, Name& name) {
  std::uint32_t index = 0;
  std::uint32_t length = 0;
  std::string_view text;
  if (!source.Take(index) || !source.Take(length) || !source.Take(length, text)) return false;
  name = {index, std::string(text)};
  return length > 0;
}

bool TakeRuns(ByteSource& source, std::uint64_t count, std::vector<Run>& runs) {
  if (count > source.GetRest() / kRunSize) return false;
  runs.reserve(count);
  for (Run run{0, 0, 0}; runs.size() < count; runs.push_back(run)) {
    const Run last = run;
    if (!TakeRun(source, last.index + last.length, run)) return false;
    const bool continues =
        !runs.empty() && last.index + last.length == run.index && last.id + last.length == run.id;
    if (continues) return false;
  }
  return count > 0;
}

bool TakeNames(ByteSource& source, std::uint64_t count, const std::vector<Run>& runs,
               std::vector<Name>& names) {
  if (count > source.GetRest() / kLeastNameSize) return false;
  names.reserve(count);
  auto run = runs.begin();
  for (Name name; names.size() < count; names.push_back(std::move(name))) {
    if (!TakeName(source, name)) return false;
    if (!names.empty() && names.back().index >= name.index) return false;
    while (run != runs.end() && run->index + run->length <= name.index) ++run;
    if (run == runs.end() || run->index > name.index) return false;
  }
  return true;
}

bool AreIdsDistinct(std::vector<Run> runs) {
  std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.id < b.id; });
  return std::adjacent_find(runs.begin(), runs.end(), [](const Run& a, const Run& b) {
           return a.id + a.length > b.id;
         }) == runs.end();
}

bool AreNamesDistinct(const std::vector<Name>& names) {
  std::vector<std::string_view> texts;
  texts.reserve(names.size());
  for (const Name& name : names) texts.emplace_back(name.text);
  std::sort(texts.begin(), texts.end());
  return std::adjacent_find(texts.begin(), texts.end()) == texts.end();
}

bool Decode(const std::string& bytes, Entities& entities) {
  ByteSource source(bytes);
  std::uint64_t runs = 0;
  std::uint64_t names = 0;
  return source.Take(runs) && source.Take(names) && TakeRuns(source, runs, entities.runs) &&
         TakeNames(source, names, entities.runs, entities.names) && source.GetRest() == 0 &&
         AreIdsDistinct(entities.runs) && AreNamesDistinct(entities.names);
}

std::string Title(FED_IdType type) {
  const bool listed = type >= 0 && type < static_cast<int>(std::size(FED_ID_TYPE_INFO));
  return std::to_string(type) + " (" + (listed ? FED_ID_TYPE_INFO[type].name : "no id type") + ")";
}

constexpr std::int64_t kNoDifference = -1;

// The first index at which `given` is not `stored` with more behind it, or kNoDifference.
std::int64_t FindDifference(const std::vector<Run>& stored, const std::vector<Run>& given) {
  for (std::size_t i = 0; i < stored.size(); ++i) {
    const Run& mine = stored[i];
    if (i == given.size()) return mine.index;
    const Run& other = given[i];
    if (mine.index != other.index) return std::min(mine.index, other.index);
    if (mine.id != other.id) return mine.index;
    const bool mayGoOn = i + 1 == stored.size() && mine.length < other.length;
    if (mine.length != other.length && !mayGoOn) {
      return mine.index + std::min(mine.length, other.length);
    }
  }
  return kNoDifference;
}

// Likewise for names; those of indices behind `end` are more.
std::int64_t FindDifference(const std::vector<Name>& stored, const std::vector<Name>& given,
                            std::int64_t end) {
  for (std::size_t i = 0; i < std::max(stored.size(), given.size()); ++i) {
    const std::int64_t mine = i < stored.size() ? stored[i].index : end;
    const std::int64_t other = i < given.size() ? std::min(given[i].index, end) : end;
    if (mine != other) return std::min(mine, other);
    if (mine == end) break;
    if (stored[i].text != given[i].text) return mine;
  }
  return kNoDifference;
}

std::int64_t FindDifference(const Entities& stored, const Entities& given) {
  const std::int64_t index = FindDifference(stored.runs, given.runs);
  if (index != kNoDifference) return index;
  return FindDifference(stored.names, given.names, stored.GetMaxIndex() + 1);
}

// The same for a map that cannot be listed: it is asked for what is stored.
std::int64_t FindDifference(const Entities& stored, const FED_IdMap& given) {
  for (const Run& run : stored.runs) {
    for (std::int64_t i = 0; i < run.length; ++i) {
      const std::int64_t index = run.index + i;
      if (!given.ContainsIndex(index) || given.IdOfIndex(index) != run.id + i) return index;
    }
  }
  for (const Name& name : stored.names) {
    if (!given.ContainsName(name.text) || given.IndexOfName(name.text) != name.index) {
      return name.index;
    }
  }
  return kNoDifference;
}

void Compare(FED_IdType type, const Entities& stored, const FED_IdMap& map) {
  const std::int64_t index =
      HidesEntities(map) ? FindDifference(stored, map) : FindDifference(stored, List(map));
  if (index == kNoDifference) return;
  FED_Failure::Throw("220200000001", kLocation,
                     "The id map %s that was given differs at index %d from the one in the "
                     "database. Give an empty map, or the one that the database was written with; "
                     "it may have more entities behind the last one.",
                     Title(type).c_str(), static_cast<int>(index));
}

void FillIds(const std::vector<Run>& runs, FED_MemoryIdMap& map) {
  constexpr std::size_t kMost = std::size_t{1} << 20;
  constexpr std::int64_t kLong = 1024;
  std::vector<std::int32_t> ids;
  std::int64_t first = runs.front().index;
  const auto flush = [&](std::int64_t next) {
    map.Add(ids.data(), ids.size(), first);
    ids.clear();
    first = next;
  };
  for (const Run& run : runs) {
    if (first + static_cast<std::int64_t>(ids.size()) != run.index) flush(run.index);
    if (run.length >= kLong) {
      flush(run.index + run.length);
      map.AddConsecutive(static_cast<std::int32_t>(run.id), static_cast<std::size_t>(run.length),
                         run.index);
      continue;
    }
    for (std::int64_t i = 0; i < run.length; ++i) {
      if (ids.size() == kMost) flush(run.index + i);
      ids.push_back(static_cast<std::int32_t>(run.id + i));
    }
  }
  flush(0);
}

// Calls use(index, id, name) for each entity, with a null name where there is none.
template <class Use>
void ForEach(const Entities& entities, Use use) {
  auto name = entities.names.begin();
  for (const Run& run : entities.runs) {
    for (std::int64_t i = 0; i < run.length; ++i) {
      const bool named = name != entities.names.end() && name->index == run.index + i;
      use(run.index + i, static_cast<std::int32_t>(run.id + i), named ? &name->text : nullptr);
      if (named) ++name;
    }
  }
}

void Fill(const Entities& entities, FED_MemoryIdMap& map) {
  FillIds(entities.runs, map);
  if (entities.names.empty()) return;
  ForEach(entities, [&map](std::int64_t index, std::int32_t id, const std::string* name) {
    if (name != nullptr) map.Add(index, id, *name);
  });
}

[[noreturn]] void FailRegistration(FED_IdType type, std::int64_t index) {
  FED_Failure::Throw("220200000002", kLocation,
                     "The id map %s that was given cannot take the entity at index %d of the "
                     "database: it numbers its entities by itself. Give a FED_MemoryIdMap, or the "
                     "map that the database was written with.",
                     Title(type).c_str(), static_cast<int>(index));
}

// A map of a class of its own gives indices as it likes; most count up.
void Register(FED_IdType type, const Entities& entities, FED_IdMap& map) {
  std::int64_t next = 0;
  for (const Run& run : entities.runs) {
    if (run.index != next) FailRegistration(type, next);
    next += run.length;
  }
  ForEach(entities, [&](std::int64_t index, std::int32_t id, const std::string* name) {
    const std::int64_t given =
        name != nullptr ? map.IndexOfNameForWrite(*name) : map.IndexOfIdForWrite(id);
    if (given != index || map.IdOfIndex(index) != id) FailRegistration(type, index);
  });
}

}  // namespace

bool HidesEntities(const FED_IdMap& map) {
  const std::int64_t greatest = map.GetMaxIndex();
  if (greatest >= 0) return greatest > kGreatest;
  constexpr std::int64_t kProbes = 1024;
  for (std::int64_t index = 0; index < kProbes; ++index) {
    if (map.ContainsIndex(index)) return true;
  }
  return false;
}

std::string EncodeIdMap(const FED_IdMap& map, std::uint64_t& entities) {
  const Entities listed = List(map);
  entities = 0;
  std::string bytes;
  if (listed.runs.empty()) return bytes;
  AppendNumber(bytes, std::uint64_t{listed.runs.size()});
  AppendNumber(bytes, std::uint64_t{listed.names.size()});
  for (const Run& run : listed.runs) {
    AppendNumber(bytes, static_cast<std::uint32_t>(run.index));
    AppendNumber(bytes, static_cast<std::uint32_t>(run.length));
    AppendNumber(bytes, static_cast<std::int32_t>(run.id));
    entities += static_cast<std::uint64_t>(run.length);
  }
  for (const Name& name : listed.names) {
    AppendNumber(bytes, static_cast<std::uint32_t>(name.index));
    AppendNumber(bytes, static_cast<std::uint32_t>(name.text.size()));
    bytes += name.text;
  }
  return bytes;
}

void MergeIdMap(FED_IdType type, const std::string& bytes, FED_IdMap& map) {
  if (bytes.empty()) return;
  Entities stored;
  if (!Decode(bytes, stored)) {
    throw Damage("220200000003",
                 "What the database keeps of the id map " + Title(type) +
                     " is damaged. Salvage copies what is intact.",
                 kLocation);
  }
  auto* const memory = dynamic_cast<FED_MemoryIdMap*>(&map);
  if (memory != nullptr && memory->GetCount() == 0) return Fill(stored, *memory);
  const bool isEmpty = map.GetMaxIndex() < 0 && !HidesEntities(map);
  return isEmpty ? Register(type, stored, map) : Compare(type, stored, map);
}

}  // namespace qelta
