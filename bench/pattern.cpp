#include "Families.h"
#include "KeyRegistry.h"
#include "peers/PlainScan.h"

namespace qelta::bench {
namespace {

constexpr std::size_t kKeys = 1000000;
// Selects one key in a thousand, so that the result costs nothing beside the scan.
constexpr FED_DataDescriptor::ResultIndex kField = FED_DataDescriptor::INCREMENT;
constexpr int kValue = 500;

void FindBlocks(benchmark::State& state) {
  const KeyRegistry& registry = KeyRegistry::OfSize(kKeys);
  FED_DataDescriptorPattern pattern;
  pattern.SetMatchExact(kField, kValue);
  MeasureItems(state, kKeys, [&] {
    benchmark::DoNotOptimize(registry.GetDatabase().m_BlockSet.FindBlocksInstances(pattern).data());
  });
}

void ScanArray(benchmark::State& state) {
  const KeyRegistry& registry = KeyRegistry::OfSize(kKeys);
  MeasureItems(state, kKeys, [&] {
    benchmark::DoNotOptimize(PlainScan(registry.GetKeys(), kField, kValue).data());
  });
}

}  // namespace

void AddPattern(Suite& suite) {
  suite.Add("pattern/one field/1e6", FindBlocks, {{"pass over the keys", ScanArray, 1.0}});
}

}  // namespace qelta::bench
