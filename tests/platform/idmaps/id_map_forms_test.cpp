#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "EntityModel.h"
#include "FailingAllocation.h"
#include "PairPatterns.h"

// The map keeps its pairs in several forms and changes between them as they come. Whatever the
// numbering and the order, it must answer as plain maps do.

namespace {

using qelta::test::EntityModel;
using qelta::test::Pair;
using qelta::test::PairOrder;
using qelta::test::PairOrders;
using qelta::test::PairPattern;
using qelta::test::PairPatterns;
using qelta::test::Pairs;

constexpr std::size_t kCount = 3000;

bool IsFree(const EntityModel& model, std::int64_t index, const std::vector<std::int32_t>& ids) {
  return std::all_of(ids.begin(), ids.end(), [&, here = index](std::int32_t id) mutable {
    return !model.Contains(here++) && model.IndexOf(id) < 0;
  });
}

Pairs MakeOrdered(const PairPattern& pattern, const PairOrder& order, std::size_t count) {
  Pairs pairs = pattern.make(count);
  order.apply(pairs);
  return pairs;
}

template <class Test>
void ForAllPatterns(std::size_t count, Test test) {
  for (const PairPattern& pattern : PairPatterns()) {
    for (const PairOrder& order : PairOrders()) {
      SCOPED_TRACE(pattern.name + ", " + order.name);
      test(MakeOrdered(pattern, order, count));
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

bool IsCheckpoint(std::size_t done) { return done < 4 || done % 500 == 70 || done == kCount; }

std::string NameOf(std::int32_t id) { return "entity " + std::to_string(id); }

// How many of the pairs from `begin` on stand at consecutive indices, `most` at most.
std::size_t CountInRow(const Pairs& pairs, std::size_t begin, std::size_t most) {
  std::size_t count = 1;
  while (count < most && begin + count < pairs.size() &&
         pairs[begin + count].first == pairs[begin].first + static_cast<std::int64_t>(count)) {
    ++count;
  }
  return count;
}

TEST(IdMapFormsTest, PairByPair) {
  ForAllPatterns(kCount, [](const Pairs& pairs) {
    FED_MemoryIdMap map(ID_TYPE_NODE);
    EntityModel model;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      const auto [index, id] = pairs[i];
      model.AddBoth(map, index, id, id % 3 == 0 ? "" : NameOf(id));
      if (IsCheckpoint(i + 1)) model.ExpectSame(map);
    }
    for (std::size_t i = 0; i < pairs.size(); i += 7) {
      const auto [index, id] = pairs[i];
      model.AddBoth(map, index, id, "");
      model.AddBoth(map, index, pairs[(i + 500) % pairs.size()].second, "");
      model.AddBoth(map, index, 77777777, "");
      model.AddBoth(map, 77777777, id, "");
      if (id % 6 == 0) model.AddBoth(map, index, id, NameOf(id));
    }
    model.ExpectSame(map);
  });
}

TEST(IdMapFormsTest, InBatches) {
  std::mt19937 random(7);
  ForAllPatterns(kCount, [&](const Pairs& pairs) {
    FED_MemoryIdMap map(ID_TYPE_NODE);
    EntityModel model;
    for (std::size_t i = 0; i < pairs.size();) {
      const std::size_t count = CountInRow(pairs, i, 1 + random() % 900);
      std::vector<std::int32_t> ids;
      for (std::size_t k = i; k < i + count; ++k) ids.push_back(pairs[k].second);
      // Some of them may be known.
      if (random() % 2 == 0) map.Add(pairs[i + count / 2].first, ids[count / 2]);
      map.Add(ids.data(), count, pairs[i].first);
      for (std::size_t k = i; k < i + count; ++k) model.Add(pairs[k].first, pairs[k].second);
      i += count;
    }
    model.ExpectSame(map);
  });
}

TEST(IdMapFormsTest, RunsInRandomPlaces) {
  std::mt19937 random(8);
  const auto below = [&](int end) {
    return static_cast<int>(random() % static_cast<std::uint32_t>(end));
  };
  for (int round = 0; round < 150; ++round) {
    FED_MemoryIdMap map(ID_TYPE_NODE);
    EntityModel model;
    const int length = std::vector<int>{3, 12, 100}[static_cast<std::size_t>(round % 3)];
    for (int width = length; width < 300 * length; width += length) {
      const std::int64_t index = 20000 + below(width) - width / 2;
      const std::int32_t id = below(width) - width / 2;
      std::vector<std::int32_t> ids(static_cast<std::size_t>(1 + below(length)));
      std::iota(ids.begin(), ids.end(), id);
      if (!IsFree(model, index, ids)) continue;
      map.Add(ids.data(), ids.size(), index);
      for (std::size_t i = 0; i < ids.size(); ++i) {
        model.Add(index + static_cast<std::int64_t>(i), ids[i]);
      }
    }
    model.ExpectSame(map);
  }
}

// Room is made on the side to which the ids go on; a batch may begin in it and end behind it.
TEST(IdMapFormsTest, RunsAcrossTheBorderOfTheRoom) {
  for (const int step : {-2, 2}) {
    for (std::int32_t count = 61; count < 400; ++count) {
      FED_MemoryIdMap map(ID_TYPE_NODE);
      EntityModel model;
      for (std::int32_t i = 0; i < count; ++i) {
        map.Add(i, i * step);
        model.Add(i, i * step);
      }
      std::vector<std::int32_t> ids(60);
      std::iota(ids.begin(), ids.end(), step < 0 ? count * step - 60 : count * step);
      map.Add(ids.data(), ids.size(), count);
      for (const std::int32_t id : ids) model.Add(count + (id - ids[0]), id);
      model.ExpectSame(map);
    }
  }
}

TEST(IdMapFormsTest, ByWriting) {
  for (const PairPattern& pattern : PairPatterns()) {
    SCOPED_TRACE(pattern.name);
    FED_MemoryIdMap map(ID_TYPE_NODE);
    EntityModel model;
    std::int64_t next = 0;
    for (const Pair& pair : pattern.make(kCount)) {
      ASSERT_EQ(map.IndexOfIdForWrite(pair.second), next);
      model.Add(next, pair.second);
      ++next;
    }
    model.ExpectSame(map);
  }
}

TEST(IdMapFormsTest, BatchStopsAtTheFirstContradiction) {
  for (const std::size_t bad : {0u, 1u, 5u, 9u}) {
    FED_MemoryIdMap map(ID_TYPE_NODE);
    const std::vector<std::int32_t> ids = {10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    map.Add(500, ids[bad]);
    EXPECT_THROW(map.Add(ids.data(), ids.size()), FED_Failure);
    EXPECT_EQ(map.GetCount(), bad + 1);
    for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(map.ContainsId(ids[i]), i <= bad);
  }
}

TEST(IdMapFormsTest, FailingAllocationsLeaveAllAsItWas) {
  std::size_t failures = 0;
  ForAllPatterns(400, [&](const Pairs& pairs) {
    FED_MemoryIdMap map(ID_TYPE_NODE);
    EntityModel model;
    for (const auto& [index, id] : pairs) {
      const std::size_t count = map.GetCount();
      const std::string name = id % 4 == 0 ? NameOf(id) : "";
      failures += qelta::test::ForEachFailingAllocation(
          [&, pair = Pair(index, id)] { map.Add(pair.first, pair.second, name); },
          [&, pair = Pair(index, id)] {
            ASSERT_EQ(map.GetCount(), count);
            ASSERT_FALSE(map.ContainsIndex(pair.first) || map.ContainsId(pair.second));
            ASSERT_FALSE(map.HasNameAt(pair.first) || map.ContainsName(NameOf(pair.second)));
          });
      model.Add(index, id, name);
      if (count % 100 == 37) model.ExpectSame(map);
    }
    model.ExpectSame(map);
  });
  EXPECT_GT(failures, 1000u);
}

TEST(IdMapFormsTest, FailingAllocationsCutABatchShort) {
  for (const PairPattern& pattern : PairPatterns()) {
    SCOPED_TRACE(pattern.name);
    FED_MemoryIdMap map(ID_TYPE_NODE);
    std::vector<std::int32_t> ids;
    for (const Pair& pair : pattern.make(kCount)) ids.push_back(pair.second);
    const std::size_t failures = qelta::test::ForEachFailingAllocation(
        [&] { map.Add(ids.data(), ids.size()); },
        [&] {
          const std::size_t count = map.GetCount();
          for (std::size_t i = 0; i < ids.size(); ++i) ASSERT_EQ(map.ContainsId(ids[i]), i < count);
          ASSERT_EQ(map.GetMaxIndex(), static_cast<std::int64_t>(count) - 1);
        });
    EXPECT_GT(failures, 1u);
    EXPECT_EQ(map.GetCount(), ids.size());
  }
}

}  // namespace
