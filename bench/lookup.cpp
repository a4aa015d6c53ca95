#include "Families.h"
#include "KeyRegistry.h"
#include "peers/ArrayLookup.h"
#include "peers/KeyMaps.h"

namespace qelta::bench {
namespace {

constexpr std::size_t kBatch = 1000;
constexpr std::size_t kResolvedKeys = 64;

// Looks each key up with an object that remembers its position.
template <class Lookup>
void MeasureResolved(benchmark::State& state, Lookup lookup) {
  const KeyRegistry& registry = KeyRegistry::OfSize(kBatch);
  const std::vector<FED_DataDescriptor> keys(registry.GetKeys().begin(),
                                             registry.GetKeys().begin() + kResolvedKeys);
  for (const FED_DataDescriptor& key : keys) lookup(registry.GetDatabase(), key);
  MeasureItems(state, kResolvedKeys, [&] {
    for (const FED_DataDescriptor& key : keys) lookup(registry.GetDatabase(), key);
  });
}

void ResolvedInSet(benchmark::State& state) {
  MeasureResolved(state, [](const BenchDatabase& database, const FED_DataDescriptor& key) {
    benchmark::DoNotOptimize(&database.m_BlockSet.GetDataBlockInstance(key));
  });
}

void ResolvedInDatabase(benchmark::State& state) {
  MeasureResolved(state, [](const FED_Database& database, const FED_DataDescriptor& key) {
    benchmark::DoNotOptimize(&database.GetDataBlock(key));
  });
}

void ArrayAccess(benchmark::State& state) {
  const ArrayLookup lookup(kResolvedKeys);
  MeasureItems(state, kResolvedKeys, [&] {
    for (std::size_t i = 0; i < kResolvedKeys; ++i) benchmark::DoNotOptimize(lookup.Find(i));
  });
}

void Fresh(benchmark::State& state, std::size_t count) {
  KeyRegistry& registry = KeyRegistry::OfSize(count);
  MeasureItems(state, kBatch, [&] {
    const FED_DataDescriptor* const keys = registry.NextOfShuffled(kBatch);
    for (std::size_t i = 0; i < kBatch; ++i) {
      const FED_DataDescriptor key = keys[i].Duplicate();
      benchmark::DoNotOptimize(&registry.GetDatabase().m_BlockSet.GetDataBlockInstance(key));
    }
  });
}

template <class Map>
void FindInMap(benchmark::State& state, std::size_t count) {
  KeyRegistry& registry = KeyRegistry::OfSize(count);
  const Map& map = MapOf<Map>(registry.GetKeys());
  MeasureItems(state, kBatch, [&] {
    const FED_DataDescriptor* const keys = registry.NextOfShuffled(kBatch);
    for (std::size_t i = 0; i < kBatch; ++i) benchmark::DoNotOptimize(map.find(keys[i])->second);
  });
}

void AddFresh(Suite& suite, const std::string& name, std::size_t count, double goal) {
  const auto sized = [count](auto* body) {
    return [=](benchmark::State& state) { body(state, count); };
  };
  suite.Add("lookup/fresh/" + name, sized(Fresh),
            {{"std::map", sized(FindInMap<OrderedKeyMap>), goal},
             {"unordered_map, Hash()", sized(FindInMap<HashedKeyMap<OwnHash>>)},
             {"unordered_map, mixed", sized(FindInMap<HashedKeyMap<MixedHash>>)}});
}

}  // namespace

void AddLookup(Suite& suite) {
  suite.Add("lookup/resolved/set", ResolvedInSet, {{"array access in a call", ArrayAccess, 1.5}});
  suite.Add("lookup/resolved/database", ResolvedInDatabase,
            {{"array access in a call", ArrayAccess}});
  AddFresh(suite, "1e3", 1000, Peer::kNoGoal);
  AddFresh(suite, "1e5", 100000, 0.46);
  AddFresh(suite, "1e6", 1000000, Peer::kNoGoal);
}

}  // namespace qelta::bench
