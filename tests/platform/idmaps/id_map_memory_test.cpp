#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "FED_Failure.h"
#include "FED_MemoryIdMap.h"
#include "LiveBytes.h"
#include "PairPatterns.h"

namespace {

using qelta::test::FindPattern;
using qelta::test::LiveBytes;
using qelta::test::PairOrder;
using qelta::test::PairOrders;
using qelta::test::PairPattern;
using qelta::test::PairPatterns;
using qelta::test::Pairs;

constexpr std::size_t kBytesPerId = 40;
constexpr std::size_t kMillion = 1000000;

std::size_t BytesOf(const Pairs& pairs) {
  const std::size_t before = LiveBytes();
  FED_MemoryIdMap map(ID_TYPE_NODE);
  for (const auto& [index, id] : pairs) map.Add(index, id);
  return LiveBytes() - before;
}

std::vector<std::int32_t> IdsOf(const Pairs& pairs) {
  std::vector<std::int32_t> ids;
  for (const auto& pair : pairs) ids.push_back(pair.second);
  return ids;
}

std::size_t BytesOfBatch(const std::vector<std::int32_t>& ids) {
  const std::size_t before = LiveBytes();
  FED_MemoryIdMap map(ID_TYPE_NODE);
  map.Add(ids.data(), ids.size());
  return LiveBytes() - before;
}

// Also in the moment after it has grown, when most of its room is empty.
TEST(IdMapMemoryTest, NoNumberingTakesMuch) {
  std::size_t worst = 0;
  for (const PairPattern& pattern : PairPatterns()) {
    for (const PairOrder& order : PairOrders()) {
      Pairs pairs = pattern.make(20000);
      order.apply(pairs);
      const std::size_t before = LiveBytes();
      FED_MemoryIdMap map(ID_TYPE_NODE);
      for (std::size_t i = 0; i < pairs.size(); ++i) {
        map.Add(pairs[i].first, pairs[i].second);
        if (i < 1000) continue;
        const std::size_t bytes = LiveBytes() - before;
        ASSERT_LT(bytes, kBytesPerId * (i + 1)) << pattern.name << ", " << order.name << ", " << i;
        worst = std::max(worst, bytes * 100 / (i + 1));
      }
    }
  }
  RecordProperty("worst_bytes_per_100_ids", static_cast<int>(worst));
}

TEST(IdMapMemoryTest, RunsTakeAFewBytesARun) {
  struct Row {
    const char* pattern;
    std::size_t most;
  };
  const Row rows[] = {{"consecutive", 1000},
                      {"around zero", 1000},
                      {"later indices", 1000},
                      {"runs of 1000", 50000},
                      {"runs of 12", kMillion / 12 * 50}};
  for (const Row& row : rows) {
    const Pairs pairs = FindPattern(row.pattern).make(kMillion);
    EXPECT_LT(BytesOf(pairs), row.most) << row.pattern;
    EXPECT_LT(BytesOfBatch(IdsOf(pairs)), row.most) << row.pattern;
  }
}

TEST(IdMapMemoryTest, BatchesTakeNoMoreThanTheyNeed) {
  EXPECT_LT(BytesOfBatch(IdsOf(FindPattern("permutation").make(kMillion))), 9 * kMillion);
  EXPECT_LT(BytesOfBatch(IdsOf(FindPattern("random ids").make(kMillion))), 15 * kMillion);
}

TEST(IdMapMemoryTest, RepeatingABatchTakesNothing) {
  const std::vector<std::int32_t> ids = IdsOf(FindPattern("random ids").make(5000));
  FED_MemoryIdMap map(ID_TYPE_NODE);
  map.Add(ids.data(), ids.size());
  const std::size_t before = LiveBytes();
  map.Add(ids.data(), ids.size());
  EXPECT_EQ(LiveBytes(), before);
}

// A mistaken index or id must not make the map take the memory that lies between.
TEST(IdMapMemoryTest, StraysDoNotTakeTheirDistance) {
  const std::size_t before = LiveBytes();
  FED_MemoryIdMap single(ID_TYPE_NODE);
  qelta::test::ResetPeakBytes();
  single.Add(2000000000, 7);
  single.Add(0, -2000000000);
  EXPECT_LT(qelta::test::PeakBytes() - before, 2000u);
  for (const PairPattern& pattern : PairPatterns()) {
    FED_MemoryIdMap map(ID_TYPE_NODE);
    for (const auto& [index, id] : pattern.make(5000)) map.Add(index, id);
    qelta::test::ResetPeakBytes();
    const std::size_t present = LiveBytes();
    map.Add(1234567890, 1987654321);
    map.Add(987654321, -1987654321);
    EXPECT_LT(qelta::test::PeakBytes() - present, 100 * 5000u) << pattern.name;
    EXPECT_EQ(map.IndexOfId(-1987654321), 987654321);
    EXPECT_EQ(map.IdOfIndex(1234567890), 1987654321);
  }
}

TEST(IdMapMemoryTest, RefusesFarIndicesBeforeItTakesMemory) {
  FED_MemoryIdMap map(ID_TYPE_NODE);
  const std::int32_t ids[] = {1, 2, 3};
  qelta::test::ResetPeakBytes();
  const std::size_t before = LiveBytes();
  EXPECT_THROW(map.Add(std::int64_t{1} << 31, 5), FED_Failure);
  EXPECT_THROW(map.Add(ids, 3, (std::int64_t{1} << 31) - 2), FED_Failure);
  EXPECT_THROW(map.Add(ids, std::size_t{1} << 32), FED_Failure);
  EXPECT_LT(qelta::test::PeakBytes() - before, 20000u);  // the failures
  EXPECT_EQ(map.GetCount(), 0u);
}

TEST(IdMapMemoryTest, NamesTakeTheirTextAndLittleMore) {
  constexpr std::size_t kCount = 20000;
  const std::string stem(40, 'n');
  const std::size_t before = LiveBytes();
  FED_MemoryIdMap map(ID_TYPE_ELEMENT_GROUP);
  std::size_t text = 0;
  for (std::size_t i = 0; i < kCount; ++i) {
    const std::string name = stem + std::to_string(i);
    map.IndexOfNameForWrite(name);
    text += name.size();
  }
  EXPECT_LT(LiveBytes() - before, text * 3 / 2 + 35 * kCount);
}

}  // namespace
