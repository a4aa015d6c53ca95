#include "PairPatterns.h"

#include <algorithm>
#include <limits>
#include <random>
#include <stdexcept>

namespace qelta::test {
namespace {

constexpr std::int64_t kGreatest = std::numeric_limits<std::int32_t>::max();

// id(i) at index(i).
template <class Index, class Id>
Pairs MakePairs(std::size_t count, Index index, Id id) {
  Pairs pairs(count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto n = static_cast<std::int64_t>(i);
    pairs[i] = {index(n), static_cast<std::int32_t>(id(n))};
  }
  return pairs;
}

std::int64_t Itself(std::int64_t i) { return i; }

// Runs of `length` ids, with gaps between them.
template <int length>
Pairs Runs(std::size_t count) {
  return MakePairs(count, Itself, [](std::int64_t i) { return i + i / length * 7 - 3; });
}

// Runs whose ids go down while their indices go up.
Pairs RunsInReverse(std::size_t count) {
  return MakePairs(count, Itself, [](std::int64_t i) { return i % 40 - i / 40 * 50; });
}

// Each run leaves a hole of one, which is filled at the end.
Pairs HolesFilledLater(std::size_t count) {
  Pairs pairs = MakePairs(count, Itself, Itself);
  std::stable_partition(pairs.begin(), pairs.end(),
                        [](const Pair& p) { return p.first % 30 != 0; });
  return pairs;
}

// As many different numbers below `end` as `count`, in random order.
std::vector<std::int64_t> Scattered(std::size_t count, std::int64_t end, unsigned seed) {
  std::mt19937_64 random(seed);
  std::vector<std::int64_t> numbers;
  while (numbers.size() < count) {
    while (numbers.size() < count + 10) {
      numbers.push_back(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(end)));
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  }
  std::shuffle(numbers.begin(), numbers.end(), random);
  numbers.resize(count);
  return numbers;
}

Pairs Permutation(std::size_t count) {
  Pairs pairs = MakePairs(count, Itself, Itself);
  std::mt19937 random(3);
  for (std::size_t i = 1; i < count; ++i) std::swap(pairs[i].second, pairs[random() % i].second);
  return pairs;
}

Pairs RandomIds(std::size_t count) {
  auto ids = Scattered(count, 2 * kGreatest, 4);
  for (std::int64_t& id : ids) id -= kGreatest;
  if (count > 1) ids.back() = std::numeric_limits<std::int32_t>::min();
  return MakePairs(count, Itself, [&](std::int64_t i) { return ids[static_cast<std::size_t>(i)]; });
}

Pairs RandomIdsAndIndices(std::size_t count) {
  Pairs pairs = RandomIds(count);
  const auto indices = Scattered(count, kGreatest, 5);
  for (std::size_t i = 0; i < count; ++i) pairs[i].first = indices[i];
  return pairs;
}

// From the greatest id on, which the least one does not continue, at the last indices.
Pairs OverTheEnd(std::size_t count) {
  const auto last = static_cast<std::int64_t>(count) - 1;
  const auto index = [=](std::int64_t i) { return kGreatest - last + i; };
  return MakePairs(count, index, [=](std::int64_t i) { return kGreatest - last / 2 + i; });
}

Pairs DownToTheLeastId(std::size_t count) {
  const auto last = static_cast<std::int64_t>(count) - 1;
  return MakePairs(count, Itself, [=](std::int64_t i) { return last - i - kGreatest - 1; });
}

Pairs UpToTheGreatestId(std::size_t count) {
  const auto last = static_cast<std::int64_t>(count) - 1;
  return MakePairs(count, Itself, [=](std::int64_t i) { return kGreatest - 2 * (last - i); });
}

Pairs DisorderThenRun(std::size_t count) {
  return MakePairs(count, Itself, [](std::int64_t i) { return i < 100 ? i * 37 % 101 : i + 1; });
}

Pairs FarStrays(std::size_t count) {
  const auto index = [](std::int64_t i) { return i % 100 == 7 ? kGreatest - i * 1000 : i; };
  return MakePairs(count, index, [](std::int64_t i) { return i % 50 == 3 ? -i * 100003 : i; });
}

void Keep(Pairs&) {}
void Reverse(Pairs& pairs) { std::reverse(pairs.begin(), pairs.end()); }
void Shuffle(Pairs& pairs) { std::shuffle(pairs.begin(), pairs.end(), std::mt19937(6)); }
void SecondHalfFirst(Pairs& pairs) {
  std::rotate(pairs.begin(), pairs.begin() + static_cast<std::ptrdiff_t>(pairs.size() / 2),
              pairs.end());
}
void EveryOtherFirst(Pairs& pairs) {
  std::stable_partition(pairs.begin(), pairs.end(), [](const Pair& p) { return p.first % 2 == 0; });
}

}  // namespace

const std::vector<PairPattern>& PairPatterns() {
  static const std::vector<PairPattern> patterns = {
      {"consecutive",
       [](std::size_t n) { return MakePairs(n, Itself, [](std::int64_t i) { return i + 1; }); }},
      {"around zero",
       [](std::size_t n) { return MakePairs(n, Itself, [](std::int64_t i) { return i - 700; }); }},
      {"later indices",
       [](std::size_t n) {
         return MakePairs(
             n, [](std::int64_t i) { return i + 100000; }, Itself);
       }},
      {"runs of 1000", Runs<1000>},
      {"runs of 12", Runs<12>},
      {"runs of 3", Runs<3>},
      {"runs in reverse", RunsInReverse},
      {"holes filled later", HolesFilledLater},
      {"every third id",
       [](std::size_t n) { return MakePairs(n, Itself, [](std::int64_t i) { return 3 * i; }); }},
      {"descending ids",
       [](std::size_t n) { return MakePairs(n, Itself, [](std::int64_t i) { return 5000 - i; }); }},
      {"permutation", Permutation},
      {"random ids", RandomIds},
      {"random ids and indices", RandomIdsAndIndices},
      {"over the end", OverTheEnd},
      {"down to the least id", DownToTheLeastId},
      {"up to the greatest id", UpToTheGreatestId},
      {"disorder, then a run", DisorderThenRun},
      {"far strays", FarStrays},
  };
  return patterns;
}

const PairPattern& FindPattern(const std::string& name) {
  for (const PairPattern& pattern : PairPatterns()) {
    if (pattern.name == name) return pattern;
  }
  throw std::out_of_range("no pattern " + name);
}

const std::vector<PairOrder>& PairOrders() {
  static const std::vector<PairOrder> orders = {{"as they come", Keep},
                                                {"reversed", Reverse},
                                                {"shuffled", Shuffle},
                                                {"second half first", SecondHalfFirst},
                                                {"every other first", EveryOtherFirst}};
  return orders;
}

}  // namespace qelta::test
