#include "Suite.h"

namespace qelta::bench {
namespace {

void Register(const std::string& name, const Body& body, Clock clock) {
  benchmark::internal::Benchmark* const entry = benchmark::RegisterBenchmark(name.c_str(), body);
  if (clock == Clock::Wall) entry->UseRealTime();
}

}  // namespace

void Suite::Add(const std::string& name, const Body& ours, const std::vector<Peer>& peers,
                Clock clock) {
  const Comparison comparison{name, peers};
  Register(NameOfOurs(comparison), ours, clock);
  for (const Peer& peer : peers) Register(NameOfPeer(comparison, peer), peer.body, clock);
  m_Comparisons.push_back(comparison);
}

std::string Suite::NameOfOurs(const Comparison& comparison) { return comparison.name + "/ours"; }

std::string Suite::NameOfPeer(const Comparison& comparison, const Peer& peer) {
  return comparison.name + "/peer:" + peer.name;
}

}  // namespace qelta::bench
