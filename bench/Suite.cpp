#include "Suite.h"

namespace qelta::bench {
namespace {

// The second repetition finds memory that the system has at hand.
constexpr int kRounds = 2;
constexpr int kRepetitions = 2;

void Register(const std::string& name, const Body& body, Clock clock) {
  benchmark::internal::Benchmark* const entry = benchmark::RegisterBenchmark(name.c_str(), body);
  if (clock == Clock::Wall) entry->UseRealTime();
  if (clock == Clock::Own) entry->UseManualTime()->Repetitions(kRepetitions);
}

}  // namespace

void Suite::Add(const std::string& name, const Body& ours, const std::vector<Peer>& peers,
                Clock clock) {
  const Comparison comparison{name, peers, clock};
  for (int round = 0; round < (clock == Clock::Own ? kRounds : 1); ++round) {
    Register(NameOfOurs(comparison), ours, clock);
    for (const Peer& peer : peers) Register(NameOfPeer(comparison, peer), peer.body, clock);
  }
  m_Comparisons.push_back(comparison);
}

std::string Suite::NameOfOurs(const Comparison& comparison) { return comparison.name + "/ours"; }

std::string Suite::NameOfPeer(const Comparison& comparison, const Peer& peer) {
  return comparison.name + "/peer:" + peer.name;
}

}  // namespace qelta::bench
