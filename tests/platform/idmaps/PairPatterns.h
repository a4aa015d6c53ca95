#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qelta::test {

using Pair = std::pair<std::int64_t, std::int32_t>;  // index and id
using Pairs = std::vector<Pair>;

/// A way in which real and less real models number their entities.
struct PairPattern {
  std::string name;
  Pairs (*make)(std::size_t count);  // no index and no id twice
};

const std::vector<PairPattern>& PairPatterns();

/// The pattern of that name.
const PairPattern& FindPattern(const std::string& name);

/// An order in which the pairs of a pattern are registered.
struct PairOrder {
  std::string name;
  void (*apply)(Pairs& pairs);
};

const std::vector<PairOrder>& PairOrders();

}  // namespace qelta::test
