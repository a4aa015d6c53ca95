#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FED_OnfInfoPool.h"
#include "FailureMatcher.h"
#include "FakeBlock.h"

namespace {

using namespace qelta::test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using Indices = std::vector<std::size_t>;
using Interval = FED_IntSetIntvl<int>::Interval;

const FED_DataDescriptor kCustomKey;

FED_IntSetIntvl<int> MakeSet(const std::vector<Interval>& intervals) {
  FED_IntSetIntvl<int> set;
  for (const Interval& interval : intervals) set.Insert(interval.lo, interval.hi);
  return set;
}

TEST(Block, TakesItsLayoutFromTheCatalogue) {
  for (const FED_OnfId onf : FED_OnfInfoPool::GetAllOnfIds()) {
    FED_DataDescriptor key(1, onf);
    const FakeBlock block(key);
    key.SetInteger(FED_DataDescriptor::STATE, 1);
    const FED_OnfMetaData& info = FED_OnfInfoPool::GetOnfInfo(onf);
    EXPECT_EQ(block.GetFormat(), info.format);
    EXPECT_EQ(block.GetRecordSize(), info.recordSize);
    EXPECT_EQ(block.GetDataTypes(), info.dataTypes);
    EXPECT_EQ(block.GetFieldDim(), info.fieldDim);
    EXPECT_EQ(block.GetPrimaryIdType(), info.idTypes[0]);
    EXPECT_TRUE(block.GetDescriptor().EqualTo(FED_DataDescriptor(1, onf)));
  }
}

TEST(Block, ConstructionFailuresLeaveNoBlock) {
  const std::string location = "|%P|QeltaDataBlock|FED_DataBlock";
  const FED_DataDescriptor unknown(static_cast<FED_OnfId>(9999));
  ExpectFailure([&] { FakeBlock block(kCustomKey); }, "164013180412", location,
                "Data record creation for non-onf block is not allowed.");
  ExpectFailure([&] { FakeBlock block(unknown); }, "164513180412", location,
                "No information is present for ONF-Block with id: 9999.");
  ExpectFailure([&] { FakeBlock block(unknown, "no format"); }, "163813180412", location,
                "Data block creation with a custom format for ONF block 9999 is not allowed.");
  EXPECT_NE(FailureId([&] { FakeBlock block(kCustomKey, "I|x"); }), "");
  EXPECT_EQ(FakeBlock::s_Alive, 0);
}

TEST(BlockWalk, IndicesInEveryForm) {
  const struct {
    Indices present;
    std::vector<Interval> runs;
  } rows[] = {
      {{}, {}},
      {{0}, {{0, 0}}},
      {{7}, {{7, 7}}},
      {{0, 1, 2, 5, 6}, {{0, 2}, {5, 6}}},
      {{1, 3, 5}, {{1, 1}, {3, 3}, {5, 5}}},
      {{2, 3, 9, 10, 11, 64}, {{2, 3}, {9, 11}, {64, 64}}},
  };
  for (const auto& row : rows) {
    FakeBlock::Calls calls;
    FakeBlock block(kCustomKey, "I|d", &calls, "b");
    block.AddRecords(row.present);
    const std::size_t count = row.present.empty() ? 0 : row.present.back() + 1;
    EXPECT_EQ(block.GetNumRecords(), count);
    calls.clear();
    Indices walked;
    for (const std::size_t index : block) walked.push_back(index);
    EXPECT_EQ(walked, row.present);
    FakeBlock::Calls expected{"b.GetMaxIndex"};
    for (std::size_t i = 0; i < count; ++i) {
      expected.push_back("b.HasRecord " + std::to_string(i));
    }
    EXPECT_EQ(calls, expected);

    EXPECT_EQ(block.GetRecordIndices(), MakeSet(row.runs));
    FED_IntSetIntvl<int> set = MakeSet({{100, 200}});
    block.GetRecordIndices(set);
    EXPECT_EQ(set, MakeSet(row.runs));
    std::vector<std::uint64_t> list{99, 98};
    block.GetRecordIndices(list);
    EXPECT_THAT(list, ElementsAreArray(row.present));
  }
}

TEST(BlockWalk, IteratorsAreValuesThatKnowTheirBlock) {
  FakeBlock block(kCustomKey, "I|d"), other(kCustomKey, "I|d");
  EXPECT_TRUE(block.Begin() == block.End());
  EXPECT_EQ(&block.End(), &block.end());
  block.AddRecords({1, 4});
  other.AddRecords({1, 4});
  auto walk = block.Begin();
  EXPECT_TRUE(walk != other.Begin());
  EXPECT_TRUE(block.End() != other.End());
  const auto copy = walk;
  EXPECT_EQ(*++walk, 4u);
  EXPECT_EQ(*copy, 1u);
  EXPECT_TRUE(++walk == block.End());
  block.AddRecords({8});
  EXPECT_TRUE(copy == block.begin()) << "the last index takes no part";
}

TEST(BlockWalk, EndIsFixedAtBegin) {
  FakeBlock block(kCustomKey, "I|d");
  block.AddRecords({0, 2, 4});
  Indices walked;
  for (const std::size_t index : block) {
    walked.push_back(index);
    if (index == 0) block.DropRecord(2);
    block.AddRecords({index + 3});  // 3 is within the walk, 6 and 7 are beyond its end
  }
  EXPECT_THAT(walked, ElementsAre(0, 3, 4));
}

TEST(Block, FieldDataInIndexOrder) {
  const std::pair<FED_OnfId, std::size_t> rows[] = {{ONF_TEMPERATURE, 1},
                                                    {ONF_DISPLACEMENT, 3},
                                                    {ONF_ELEMENT_STRESS, 6},
                                                    {ONF_SOUND_PRESSURE, 0},
                                                    {ONF_FRAME_TIME, 0}};
  for (const auto& [onf, dim] : rows) {
    FakeBlock block{FED_DataDescriptor(onf)};
    EXPECT_TRUE(block.GetFieldData().empty());
    std::vector<double> expected;
    for (const std::size_t index : {1u, 4u, 5u}) {
      const double v = static_cast<double>(index);
      const double values[] = {v, v + 0.1, v + 0.2, v + 0.3, v + 0.4, v + 0.5};
      block.AddRecords({index});
      if (dim == 1) block.SetScalar(index, values[0]);
      if (dim == 3) block.SetVector(index, values);
      if (dim == 6) block.SetTensor(index, values);
      EXPECT_TRUE(dim != 3 || block.GetVector(index)[2] == values[2]);
      expected.insert(expected.end(), values, values + dim);
    }
    EXPECT_EQ(block.GetFieldData(), expected) << onf;
  }
}

}  // namespace
