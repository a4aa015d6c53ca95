#include <FED_MemoryIdMap.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <unordered_map>
#include <vector>

#include "Families.h"

namespace qelta::bench {
namespace {

constexpr std::size_t kIds = 1000000;

using Ids = std::vector<std::int32_t>;

Ids Consecutive() {
  Ids ids(kIds);
  std::iota(ids.begin(), ids.end(), 1);
  return ids;
}

// A thousand runs with gaps, as the parts of an assembly have.
Ids ThousandRuns() {
  Ids ids = Consecutive();
  for (std::int32_t& id : ids) id += id / 1000 * 500;
  return ids;
}

Ids Random() {
  constexpr std::uint32_t kOdd = 0x9e3779b1;  // times different numbers gives different numbers
  Ids ids = Consecutive();
  for (std::int32_t& id : ids) {
    id = static_cast<std::int32_t>(static_cast<std::uint32_t>(id) * kOdd);
  }
  std::shuffle(ids.begin(), ids.end(), std::mt19937(1));
  return ids;
}

// Ids against indices both ways, of what the standard library has.
struct StandardMap {
  void Add(const std::int32_t* ids, std::size_t count) {
    idOfIndex.assign(ids, ids + count);
    indexOfId.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      indexOfId.emplace(ids[i], static_cast<std::int64_t>(i));
    }
  }
  std::int64_t IndexOfId(std::int32_t id) const { return indexOfId.find(id)->second; }

  Ids idOfIndex;
  std::unordered_map<std::int32_t, std::int64_t> indexOfId;
};

struct OurMap : FED_MemoryIdMap {
  OurMap() : FED_MemoryIdMap(ID_TYPE_NODE) {}
};

template <class Map, Ids (*makeIds)()>
void Fill(benchmark::State& state) {
  const Ids ids = makeIds();
  MeasureItems(state, ids.size(), [&] {
    Map map;
    map.Add(ids.data(), ids.size());
    benchmark::DoNotOptimize(&map);
  });
}

template <class Map, Ids (*makeIds)()>
void Find(benchmark::State& state) {
  Ids ids = makeIds();
  Map map;
  map.Add(ids.data(), ids.size());
  std::shuffle(ids.begin(), ids.end(), std::mt19937(2));
  MeasureItems(state, ids.size(), [&] {
    for (const std::int32_t id : ids) benchmark::DoNotOptimize(map.IndexOfId(id));
  });
}

template <Ids (*makeIds)()>
void AddNumbering(Suite& suite, const std::string& name) {
  suite.Add("idmaps/fill/" + name, Fill<OurMap, makeIds>,
            {{"std::unordered_map", Fill<StandardMap, makeIds>, 1.0}});
  suite.Add("idmaps/find/" + name, Find<OurMap, makeIds>,
            {{"std::unordered_map", Find<StandardMap, makeIds>, 1.0}});
}

}  // namespace

void AddIdMaps(Suite& suite) {
  AddNumbering<Consecutive>(suite, "consecutive ids");
  AddNumbering<ThousandRuns>(suite, "1000 runs");
  AddNumbering<Random>(suite, "random ids");
}

}  // namespace qelta::bench
