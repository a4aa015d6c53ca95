#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace qelta::bench {

/// What Google Benchmark runs: does the setup, repeats the work, says how much work it was.
using Body = std::function<void(benchmark::State&)>;

/// Another way to do the same work, or the limit set by the machine.
struct Peer {
  static constexpr double kNoGoal = 0;

  std::string name;
  Body body;
  double goal = kNoGoal;      ///< the ratio that we want to reach, or less
  double sizeGoal = kNoGoal;  ///< the same for the bytes of a counter kSizeCounter
};

/// What some work leaves behind, in bytes: a user counter of the body, with a row of its own.
inline constexpr const char* kSizeCounter = "size";

/// Processor time of this process, what a clock on the wall shows (work done by a child), or what
/// the body says of each iteration. The last is for work of seconds: it is done in two rounds over
/// ours and the peers, twice in each, and the best counts.
enum class Clock { Processor, Wall, Own };

/// The comparisons of one run: our way of doing a piece of work, each beside its peers.
class Suite {
 public:
  struct Comparison {
    std::string name;  ///< "family/case"
    std::vector<Peer> peers;
    Clock clock = Clock::Processor;
  };

  /// Registers "name/ours" and one "name/peer:<peer>" for each peer.
  void Add(const std::string& name, const Body& ours, const std::vector<Peer>& peers,
           Clock clock = Clock::Processor);

  const std::vector<Comparison>& GetComparisons() const { return m_Comparisons; }

  static std::string NameOfOurs(const Comparison& comparison);
  static std::string NameOfPeer(const Comparison& comparison, const Peer& peer);

 private:
  std::vector<Comparison> m_Comparisons;
};

/// Repeats `pass`, which does `items` items of work.
template <class Pass>
void MeasureItems(benchmark::State& state, std::size_t items, Pass pass) {
  for (auto _ : state) pass();
  state.SetItemsProcessed(static_cast<std::int64_t>(items) * state.iterations());
}

/// Repeats `pass`, which works on `bytes` bytes.
template <class Pass>
void MeasureBytes(benchmark::State& state, std::size_t bytes, Pass pass) {
  for (auto _ : state) pass();
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

}  // namespace qelta::bench
