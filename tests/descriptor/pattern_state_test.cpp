#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "FED_DataDescriptorPattern.h"
#include "FailingAllocation.h"
#include "RawBytes.h"

namespace {

using namespace qelta::test;
using Descriptor = FED_DataDescriptor;
using Pattern = FED_DataDescriptorPattern;
using State = FED_DataDescriptorPattern::MatchStateData;
using Pairs = std::vector<std::pair<int, int>>;

// A descriptor of two fields, ITERATION before STATE in the order of fields.
Descriptor MakePair(int iteration, int state) {
  Descriptor descriptor;
  descriptor.SetInteger(Descriptor::ITERATION, iteration);
  descriptor.SetInteger(Descriptor::STATE, state);
  return descriptor;
}

void Feed(const Pattern& pattern, State& state, const Pairs& pairs) {
  for (const auto& [iteration, stateNumber] : pairs) {
    pattern.Match(MakePair(iteration, stateNumber), state);
  }
}

Pairs MatchedOf(const State& state) {
  std::vector<Descriptor> matched(3);
  state.GetMatched(matched);
  Pairs pairs;
  for (const Descriptor& d : matched) {
    pairs.emplace_back(d.GetInteger(Descriptor::ITERATION), d.GetInteger(Descriptor::STATE));
  }
  return pairs;
}

Pattern HighestIteration() {
  Pattern pattern;
  pattern.SetMatchHighest(Descriptor::ITERATION);
  return pattern;
}

TEST(MatchState, ResetAndCopiesAreIndependent) {
  State state;
  Feed(HighestIteration(), state, {{9, 1}});
  state.Reset();
  EXPECT_TRUE(MatchedOf(state).empty());
  Feed(HighestIteration(), state, {{1, 0}, {5, 1}});
  State copy(state), assigned;
  Feed(HighestIteration(), assigned, {{8, 8}});
  assigned = state;
  Feed(HighestIteration(), copy, {{7, 2}});
  Feed(HighestIteration(), assigned, {{4, 2}, {5, 3}});
  EXPECT_EQ(MatchedOf(state), (Pairs{{5, 1}}));
  EXPECT_EQ(MatchedOf(copy), (Pairs{{7, 2}}));
  EXPECT_EQ(MatchedOf(assigned), (Pairs{{5, 1}, {5, 3}}));
}

// A state that was moved from keeps its extremes, so what lies below them is still rejected.
TEST(MatchState, MovesTakeTheCandidatesAndCopyTheExtremes) {
  State source, target;
  Feed(HighestIteration(), source, {{1, 0}, {5, 1}});
  Feed(HighestIteration(), target, {{8, 8}});
  State moved(std::move(source));
  EXPECT_EQ(MatchedOf(moved), (Pairs{{5, 1}}));
  target = std::move(moved);
  for (State* emptied : {&source, &moved}) {
    Feed(HighestIteration(), *emptied, {{4, 4}});
    EXPECT_TRUE(MatchedOf(*emptied).empty());
    Feed(HighestIteration(), *emptied, {{5, 5}});
    EXPECT_EQ(MatchedOf(*emptied), (Pairs{{5, 5}}));
  }
  Feed(HighestIteration(), target, {{4, 2}, {5, 3}});
  EXPECT_EQ(MatchedOf(target), (Pairs{{5, 1}, {5, 3}}));
}

TEST(MatchState, GoesOnAfterACandidateFoundNoMemory) {
  Pattern both = HighestIteration();
  both.SetMatchHighest(Descriptor::STATE);
  State state;
  Feed(both, state, {{1, 1}, {2, 2}});
  const Descriptor next = MakePair(3, 3);
  const auto check = [&] { EXPECT_LE(MatchedOf(state).size(), 1u); };
  EXPECT_GT(ForEachFailingAllocation([&] { both.Match(next, state); }, check), 0u);
  EXPECT_EQ(MatchedOf(state), (Pairs{{3, 3}}));
  // Later candidates are judged by their own criteria.
  Feed(both, state, {{3, 2}, {4, 4}});
  EXPECT_EQ(MatchedOf(state), (Pairs{{4, 4}}));
}

}  // namespace
