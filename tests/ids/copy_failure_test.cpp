// Copies that fail in the middle: which failure, what is in the target then, and that no cursor and
// no view is left.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "CopyFixture.h"
#include "FailingAllocation.h"
#include "FailureMatcher.h"
#include "IdFakes.h"

namespace {

using namespace qelta::test;
using namespace QeltaDatabaseUtils;
using Descriptor = FED_DataDescriptor;
using Indices = std::vector<std::size_t>;
using Ids = std::vector<std::int32_t>;

const Descriptor kNodal(1, ONF_TEMPERATURE);

class CopyFailure : public CopyFixture {
 protected:
  // What stands in the target is the first `count` of the ids, as they are in the source.
  void ExpectCopied(const Descriptor& key, const Ids& ids, std::size_t count) const {
    const Content source = SourceContent(key);
    Content expected;
    for (std::size_t i = 0; i < count; ++i) {
      const std::string id = std::to_string(ids[i]);
      expected[id] = source.at(id);
    }
    EXPECT_TRUE(TargetContent(key) == expected) << count << " of " << ids.size();
    ExpectNothingLeft();
  }
};
INSTANTIATE_TEST_SUITE_P(Storages, CopyFailure, testing::ValuesIn(kStoragePairs), StoragePairName);

// More than moves at a time, so that the stranger stands in the middle of a run.
constexpr std::size_t kCount = 30000;

Ids Ascending(std::size_t count) {
  Ids ids(count);
  for (std::size_t i = 0; i < count; ++i) ids[i] = static_cast<std::int32_t>(i + 1);
  return ids;
}

TEST_P(CopyFailure, IdThatTheTargetDoesNotKnow) {
  for (const std::size_t stranger : {std::size_t{0}, std::size_t{12345}, kCount - 1}) {
    ChangedKind kind(ONF_TEMPERATURE);
    kind.Set(0, ID_TYPE_NODE, false);
    const Ids ids = Ascending(kCount);
    Ids known = ids;
    known.erase(known.begin() + static_cast<std::ptrdiff_t>(stranger));
    std::rotate(known.begin(), known.begin() + 5000, known.end());
    Reset();
    NumberNodes(ids, known);
    FED_DataBlock& block = MakeSource(kNodal);
    for (std::size_t i = 0; i < kCount; ++i) block.SetScalar(i, static_cast<double>(i) / 3);
    EXPECT_EQ(
        FailureId([&] { copy_datablocks(Source(), Target(), {Job(kNodal)}, SKIP_EMPTY_BLOCKS); }),
        "110000000203");
    ExpectCopied(kNodal, ids, stranger);
  }
}

TEST_P(CopyFailure, SourceIndexWithoutId) {
  NumberNodes(Ascending(7000), {});
  FED_DataBlock& block = MakeSource(kNodal);
  for (std::size_t i = 0; i < 7004; ++i) block.SetScalar(i, 1);
  EXPECT_EQ(
      FailureId([&] { copy_datablocks(Source(), Target(), {Job(kNodal)}, SKIP_EMPTY_BLOCKS); }),
      "110000000205");
  block.DeleteData();
  EXPECT_EQ(TargetContent(kNodal).size(), 7000u);
  EXPECT_EQ(MaxIndexOf(ID_TYPE_NODE), 6999) << "no id was registered in vain";
}

TEST_P(CopyFailure, AbsentRecordInTheSelection) {
  const Ids ids = Ascending(9000);
  NumberNodes(ids, {});
  FED_DataBlock& block = MakeSource(kNodal);
  FED_DataBlock& custom = MakeSource(LabelKey("custom"), "I|d");
  Indices selection;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    selection.push_back(i);
    if (i == 8500) continue;
    block.SetScalar(i, 1.5 * static_cast<double>(i));
    custom.SetScalar(i, 2.5 * static_cast<double>(i));
  }
  EXPECT_ANY_THROW(copy_datablock(Source(), Target(), Job(kNodal), selection));
  ExpectCopied(kNodal, ids, 8500);
  EXPECT_EQ(MaxIndexOf(ID_TYPE_NODE), 8499) << "no id was registered in vain";

  const Descriptor key = LabelKey("custom");
  EXPECT_ANY_THROW(copy_datablock(Source(), Target(), Job(key), selection));
  EXPECT_EQ(TargetBlock(key).GetMaxIndex(), 8499);
  EXPECT_EQ(TargetContent(key).size(), 8500u);
  ExpectNothingLeft();
  // Far from every record, and where the count of indices wraps around.
  const std::size_t last = static_cast<std::size_t>(-1);
  for (const Indices& far : {Indices{last, 0}, Indices{std::size_t{1} << 40}}) {
    EXPECT_ANY_THROW(copy_datablock(Source(), Target(), Job(key), far));
    EXPECT_ANY_THROW(copy_datablock(Source(), Target(), Job(kNodal), far));
  }
  EXPECT_EQ(TargetContent(key).size(), 8500u);
}

TEST_P(CopyFailure, LaterJobsAreNotReached) {
  NumberNodes({1, 2}, {});
  FillScalars(kNodal, {0, 1});
  const std::vector<CopyJob> jobs{Job(kNodal), Job(LabelKey("absent")),
                                  Job(kNodal, Descriptor(2, ONF_TEMPERATURE))};
  EXPECT_EQ(FailureId([&] { copy_datablocks(Source(), Target(), jobs, COPY_EMPTY_BLOCKS); }),
            "133456270312");
  ExpectSame(kNodal, kNodal);
  EXPECT_EQ(Target().FindBlocks({}).size(), 1u);
}

// A key without ONF cannot make the block of a kind; as a job or as an alias that a pattern finds.
TEST_P(CopyFailure, TargetKeyWithoutKind) {
  NumberNodes({1}, {1});
  FillScalars(kNodal, {0});
  EXPECT_EQ(FailureId([&] {
              copy_datablock(Source(), Target(), Job(kNodal, LabelKey("x")), Indices{0});
            }),
            "164013180412");
  EXPECT_TRUE(Target().FindBlocks({}).empty());
}

// Every kind of copy there is, with all allocations from the n-th on failing, for all n.
TEST_P(CopyFailure, ShortMemoryLeavesWholeRecords) {
  const Ids ids = Ascending(12);
  NumberNodes(ids, {5, 3});
  const Descriptor custom = LabelKey("custom"), texts = LabelKey("texts");
  const Descriptor groups(1, ONF_NODE_GROUP);
  FillScalars(kNodal, {0, 1, 2, 7, 8, 11});
  for (const auto& [key, format] : {std::pair{custom, "I|dV"}, std::pair{texts, "I|SLD"}}) {
    FED_DataBlock& block = MakeSource(key, format);
    for (const std::size_t index : {0u, 1u, 4u}) FillRecord(block, index);
  }
  FED_IdMap& names = Source().GetIdMapsPool().GetMap(ID_TYPE_NODE_GROUP);
  FED_DataBlock& groupBlock = MakeSource(groups);
  for (const char* name : {"top", "bottom"}) {
    FillRecord(groupBlock, static_cast<std::size_t>(names.IndexOfNameForWrite(name)));
  }
  for (const Descriptor& key : {kNodal, custom, texts, groups}) {
    const Content source = SourceContent(key);
    const std::vector<CopyJob> job{Job(key)};
    const std::size_t failed = ForEachFailingAllocation(
        [&] { copy_datablocks(Source(), Target(), job, SKIP_EMPTY_BLOCKS); },
        [&] {
          ExpectNothingLeft();
          if (!Target().HasBlock(key.Duplicate())) return;
          for (const auto& [id, record] : TargetContent(key)) EXPECT_EQ(source.at(id), record);
          Target().DeleteDataBlock(key.Duplicate());
        });
    EXPECT_GE(failed, 6u);
    ExpectSame(key, key);
  }
}

}  // namespace
