#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "FED_Failure.h"
#include "FED_MemoryIdMap.h"
#include "FailingAllocation.h"
#include "PairPatterns.h"

// The map keeps its pairs in several forms and changes between them as they come. Whatever the
// numbering and the order, it must answer as two plain maps do.

namespace {

using qelta::test::Pair;
using qelta::test::PairOrder;
using qelta::test::PairOrders;
using qelta::test::PairPattern;
using qelta::test::PairPatterns;
using qelta::test::Pairs;

constexpr std::size_t kCount = 3000;

class TwoMaps {
 public:
  void Add(const Pair& pair) {
    m_Ids[pair.first] = pair.second;
    m_Indices[pair.second] = pair.first;
  }

  bool IsFree(std::int64_t index, const std::vector<std::int32_t>& ids) const {
    return std::all_of(ids.begin(), ids.end(), [&, here = index](std::int32_t id) mutable {
      return m_Ids.count(here++) == 0 && m_Indices.count(id) == 0;
    });
  }

  void ExpectSame(const FED_MemoryIdMap& map) const {
    ASSERT_EQ(map.GetCount(), m_Ids.size());
    ASSERT_EQ(map.GetMaxIndex(), m_Ids.empty() ? -1 : m_Ids.rbegin()->first);
    for (const auto& [index, id] : m_Ids) {
      ASSERT_EQ(map.IdOfIndex(index), id);
      ASSERT_EQ(map.IndexOfId(id), index);
      ExpectSameAround(map, index, id);
    }
    ExpectSameRuns(map);
  }

 private:
  void ExpectSameAround(const FED_MemoryIdMap& map, std::int64_t index, std::int32_t id) const {
    for (const int step : {-1, 1}) {
      const auto near = static_cast<std::int32_t>(std::int64_t{id} + step);
      ASSERT_EQ(map.ContainsId(near), m_Indices.count(near) != 0) << near;
      ASSERT_EQ(map.ContainsIndex(index + step), m_Ids.count(index + step) != 0) << index + step;
    }
  }

  void ExpectSameRuns(const FED_MemoryIdMap& map) const {
    std::map<std::int64_t, std::int32_t> ids;
    std::pair<std::int64_t, std::int64_t> next(0, 0);  // would continue the run before
    for (const qelta::IdRun& run : map.ListRuns()) {
      ASSERT_TRUE(ids.empty() || std::make_pair(run.index, std::int64_t{run.id}) != next);
      for (std::uint32_t i = 0; i < run.length; ++i) {
        ids[run.index + i] = static_cast<std::int32_t>(run.id + std::int64_t{i});
      }
      ASSERT_EQ(ids.rbegin()->first, run.index + run.length - 1);  // they ascend
      next = {run.index + run.length, run.id + std::int64_t{run.length}};
    }
    ASSERT_EQ(ids, m_Ids);
  }

  std::map<std::int64_t, std::int32_t> m_Ids;
  std::map<std::int32_t, std::int64_t> m_Indices;
};

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
    TwoMaps model;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      ASSERT_NO_THROW(map.Add(pairs[i].first, pairs[i].second));
      model.Add(pairs[i]);
      if (IsCheckpoint(i + 1)) model.ExpectSame(map);
    }
  });
}

TEST(IdMapFormsTest, InBatches) {
  std::mt19937 random(7);
  ForAllPatterns(kCount, [&](const Pairs& pairs) {
    FED_MemoryIdMap map(ID_TYPE_NODE);
    TwoMaps model;
    for (std::size_t i = 0; i < pairs.size();) {
      const std::size_t count = CountInRow(pairs, i, 1 + random() % 900);
      std::vector<std::int32_t> ids;
      for (std::size_t k = i; k < i + count; ++k) ids.push_back(pairs[k].second);
      // Some of them may be known.
      if (random() % 2 == 0) map.Add(pairs[i + count / 2].first, ids[count / 2]);
      map.Add(ids.data(), count, pairs[i].first);
      for (std::size_t k = i; k < i + count; ++k) model.Add(pairs[k]);
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
    TwoMaps model;
    const int length = std::vector<int>{3, 12, 100}[static_cast<std::size_t>(round % 3)];
    for (int width = length; width < 300 * length; width += length) {
      const std::int64_t index = 20000 + below(width) - width / 2;
      const std::int32_t id = below(width) - width / 2;
      std::vector<std::int32_t> ids(static_cast<std::size_t>(1 + below(length)));
      std::iota(ids.begin(), ids.end(), id);
      if (!model.IsFree(index, ids)) continue;
      map.Add(ids.data(), ids.size(), index);
      for (std::size_t i = 0; i < ids.size(); ++i) {
        model.Add({index + static_cast<std::int64_t>(i), ids[i]});
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
      TwoMaps model;
      for (std::int32_t i = 0; i < count; ++i) {
        map.Add(i, i * step);
        model.Add({i, i * step});
      }
      std::vector<std::int32_t> ids(60);
      std::iota(ids.begin(), ids.end(), step < 0 ? count * step - 60 : count * step);
      map.Add(ids.data(), ids.size(), count);
      for (const std::int32_t id : ids) model.Add({count + (id - ids[0]), id});
      model.ExpectSame(map);
    }
  }
}

TEST(IdMapFormsTest, ByWriting) {
  for (const PairPattern& pattern : PairPatterns()) {
    SCOPED_TRACE(pattern.name);
    FED_MemoryIdMap map(ID_TYPE_NODE);
    TwoMaps model;
    std::int64_t next = 0;
    for (const Pair& pair : pattern.make(kCount)) {
      ASSERT_EQ(map.IndexOfIdForWrite(pair.second), next);
      model.Add({next, pair.second});
      ++next;
    }
    model.ExpectSame(map);
  }
}

TEST(IdMapFormsTest, NamesStayWithTheirEntities) {
  ForAllPatterns(700, [](const Pairs& pairs) {
    FED_MemoryIdMap map(ID_TYPE_ELEMENT_GROUP);
    for (const auto& [index, id] : pairs) {
      map.Add(index, id, id % 3 == 0 ? "" : NameOf(id));
    }
    for (const auto& [index, id] : pairs) {
      if (id % 6 == 0) map.Add(index, id, NameOf(id));
    }
    for (const auto& [index, id] : pairs) {
      const bool named = id % 6 == 0 || id % 3 != 0;
      ASSERT_EQ(map.HasNameAt(index), named);
      ASSERT_EQ(map.ContainsName(NameOf(id)), named);
      if (!named) continue;
      std::string name = "what stood before";
      map.NameOfIndex(index, name);
      ASSERT_EQ(name, NameOf(id));
      ASSERT_EQ(map.IndexOfName(name), index);
    }
  });
}

TEST(IdMapFormsTest, ContradictionsAreRefusedAndRepetitionsAreNot) {
  ForAllPatterns(1000, [](const Pairs& pairs) {
    FED_MemoryIdMap map(ID_TYPE_NODE);
    TwoMaps model;
    for (const Pair& pair : pairs) map.Add(pair.first, pair.second);
    for (const Pair& pair : pairs) model.Add(pair);
    for (std::size_t i = 0; i < pairs.size(); i += 7) {
      const Pair& other = pairs[(i + 500) % pairs.size()];
      ASSERT_NO_THROW(map.Add(pairs[i].first, pairs[i].second));
      ASSERT_THROW(map.Add(pairs[i].first, other.second), FED_Failure);
      ASSERT_THROW(map.Add(pairs[i].first, 77777777), FED_Failure);
      ASSERT_THROW(map.Add(77777777, pairs[i].second), FED_Failure);
    }
    model.ExpectSame(map);
  });
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
    TwoMaps model;
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
      model.Add({index, id});
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
