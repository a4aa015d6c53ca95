// Copies between two databases: what is asked in which order, what is made, what arrives.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "CopyFixture.h"
#include "FED_ConstIdDataBlock.h"
#include "FED_IdDataBlock.h"
#include "FailureMatcher.h"
#include "IdFakes.h"
#include "RawBytes.h"

namespace {

using namespace qelta::test;
using namespace QeltaDatabaseUtils;
using testing::ElementsAre;
using Descriptor = FED_DataDescriptor;
using Indices = std::vector<std::size_t>;

const Descriptor kNodal(1, ONF_TEMPERATURE);

// A database whose blocks write down their calls under its name, and so do its maps and it itself.
class RecordingDatabase : public FakeDatabase {
 public:
  RecordingDatabase(const char* name, std::int32_t firstId, Calls& calls)
      : m_Name(name), m_Calls(calls) {
    SetRecordingMaps(GetIdMapsPool(), name, firstId, calls);
  }
  FED_DataBlock& CreateDataBlock(const Descriptor& key, int properties, std::int64_t count,
                                 const std::string& format) override {
    m_Calls.push_back(std::string(m_Name) + ".Create " + format + ' ' + std::to_string(properties) +
                      ' ' + std::to_string(count));
    return Register(key, new FakeBlock(key.Duplicate(), format, &m_Calls, m_Name));
  }
  FED_DataBlock& CreateDataBlock(const Descriptor& key, std::size_t count) override {
    m_Calls.push_back(std::string(m_Name) + ".Create " + std::to_string(count));
    return Register(key, new FakeBlock(key.Duplicate(), &m_Calls, m_Name));
  }
  std::vector<Descriptor> FindBlocks(const FED_DataDescriptorPattern& pattern) const override {
    m_Calls.push_back(std::string(m_Name) + ".FindBlocks");
    return FakeDatabase::FindBlocks(pattern);
  }
  void Open() { InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L""); }

 private:
  const char* m_Name;
  Calls& m_Calls;
};

class CopyOrder : public testing::Test {
 protected:
  CopyOrder() {
    m_Source.Open();
    m_Target.Open();
  }
  FakeBlock& Make(const Descriptor& key, const Indices& indices) {
    auto& block = dynamic_cast<FakeBlock&>(m_Source.CreateDataBlock(key.Duplicate(), 0));
    block.AddRecords(indices);
    m_Calls.clear();
    return block;
  }

  Calls m_Calls;
  RecordingDatabase m_Source{"s", 100, m_Calls};
  RecordingDatabase m_Target{"t", 100, m_Calls};
};

TEST_F(CopyOrder, ById) {
  Make(kNodal, {1, 4});
  EXPECT_EQ(copy_datablocks(m_Source, m_Target, FED_DataDescriptorPattern(), SKIP_EMPTY_BLOCKS),
            1u);
  EXPECT_EQ(Journal(m_Calls),
            "s.FindBlocks, t.Create 0, "
            "s0.IdOfIndex 1, s0.IndexOfId 101, s.GetRecord 1, "
            "t0.IndexOfIdForWrite 101, t.SetRecord 51, "
            "s0.IdOfIndex 4, s0.IndexOfId 104, s.GetRecord 4, "
            "t0.IndexOfIdForWrite 104, t.SetRecord 54");
}

TEST_F(CopyOrder, ByName) {
  const Descriptor key(1, ONF_NODE_GROUP);
  FakeBlock& from = Make(key, {2});
  {
    const qelta::RecordWriter record(from);
    record->SetIntList(1, std::vector<int>{7, 3});
    from.SetRecord(2, *record);
  }
  m_Calls.clear();
  copy_datablocks(m_Source, m_Target, {Job(key)}, SKIP_EMPTY_BLOCKS);
  EXPECT_EQ(Journal(m_Calls),
            "t.Create 0, s2.NameOfIndex 2, s2.IndexOfName n2, s.GetRecord 2, s.GetIntList 1, "
            "s0.IdOfIndex 3, s0.IdOfIndex 7, t0.IndexOfIdForWrite 103, t0.IndexOfIdForWrite 107, "
            "t.SetIntList 2, t2.IndexOfNameForWrite n2, t.SetRecord 52");
}

TEST_F(CopyOrder, CustomBlockByIndex) {
  const Descriptor key = LabelKey("custom");
  auto& from = dynamic_cast<FakeBlock&>(m_Source.CreateDataBlock(key.Duplicate(), 0, 0, "S|dS|I"));
  from.AddRecords({0, 2, 5});
  from.SetProperties(42);
  m_Calls.clear();
  copy_datablocks(m_Source, m_Target, {Job(key)}, SKIP_EMPTY_BLOCKS);
  EXPECT_EQ(Journal(m_Calls),
            "t.Create S|dS|I 42 6, "
            "s.GetRecord 0, s.GetString 0, t.SetRecord 0, s.GetRecord 2, s.GetString 0, "
            "t.SetRecord 2, s.GetRecord 5, s.GetString 0, t.SetRecord 5");
}

TEST(CopyStart, NeedsTwoInitialisedDatabases) {
  const struct {
    bool source, target;
    const char* message;
  } rows[] = {{false, false, "Source database is not initialized."},
              {false, true, "Source database is not initialized."},
              {true, false, "Target database is not initialized."}};
  for (const auto& row : rows) {
    Calls calls;
    RecordingDatabase source("s", 0, calls), target("t", 0, calls);
    dynamic_cast<FakeBlock&>(source.CreateDataBlock(kNodal.Duplicate(), 0)).AddRecords({1});
    if (row.source) source.Open();
    if (row.target) target.Open();
    calls.clear();
    const std::string location = "|%P|QeltaDbConnector|QeltaDatabaseUtils";
    const FED_DataDescriptorPattern all;
    ExpectFailure([&] { copy_datablocks(source, target, all, COPY_EMPTY_BLOCKS); }, "", location,
                  row.message);
    EXPECT_EQ(Journal(calls), "s.FindBlocks") << "the search comes first";
    // Neither a missing block nor an empty list of jobs comes before the test.
    const std::vector<CopyJob> jobs[] = {{}, {Job(LabelKey("absent"), kNodal)}, {Job(kNodal)}};
    for (const auto& list : jobs) {
      ExpectFailure([&] { copy_datablocks(source, target, list, SKIP_EMPTY_BLOCKS); }, "", location,
                    row.message);
    }
    EXPECT_FALSE(target.HasBlock(kNodal.Duplicate()));
  }
}

TEST(CopyStart, JobsCarryFreshKeysToTheTarget) {
  class KeyDatabase : public FakeDatabase {
   public:
    using FakeDatabase::FetchDataBlock;
    FED_DataBlock& FetchDataBlock(const Descriptor& key, std::size_t count) override {
      EXPECT_EQ(CacheOf(key), (Cache{-1, -1, 0}));
      return FakeDatabase::FetchDataBlock(key, count);
    }
    using FakeDatabase::GetDataBlock;
    const FED_DataBlock& GetDataBlock(const Descriptor& key) const override {
      EXPECT_GE(CacheOf(key).blockId, 0) << "as found, with its position";
      return FakeDatabase::GetDataBlock(key);
    }
  };
  KeyDatabase source, target;
  for (KeyDatabase* database : {&source, &target}) {
    database->InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"");
  }
  for (const int i : {1, 2, 3}) source.CreateDataBlock(Descriptor(i, ONF_FRAME_TIME), 0);
  EXPECT_EQ(copy_datablocks(source, target, FED_DataDescriptorPattern(), COPY_EMPTY_BLOCKS), 3u);
}

// The same over every pair of storages: with whole runs of records, and record by record.
class Copy : public CopyFixture {};
INSTANTIATE_TEST_SUITE_P(Storages, Copy, testing::ValuesIn(kStoragePairs), StoragePairName);

TEST_P(Copy, EmptyBlocksBothWays) {
  MakeSource(kNodal);
  Source().CreateDataBlock(LabelKey("custom"), 5, 10, "I|dS");
  const FED_DataDescriptorPattern all;
  EXPECT_EQ(copy_datablocks(Source(), Target(), all, SKIP_EMPTY_BLOCKS), 0u);
  EXPECT_TRUE(Target().FindBlocks(all).empty());
  EXPECT_EQ(copy_datablocks(Source(), Target(), all, COPY_EMPTY_BLOCKS), 2u);
  EXPECT_EQ(TargetBlock(kNodal).GetMaxIndex(), -1);
  EXPECT_EQ(TargetBlock(LabelKey("custom")).GetFormat(), "I|dS");
  const auto other = static_cast<EmptyBlockAction>(-7);
  EXPECT_EQ(copy_datablocks(Source(), Target(), all, other), 2u) << "everything but 0 copies";
}

TEST_P(Copy, AliasIsCopiedUnderEachOfItsKeys) {
  NumberNodes({1, 2, 3}, {3, 2, 1});
  FillScalars(kNodal, {0, 2});
  Descriptor alias(2, ONF_TEMPERATURE);
  ASSERT_TRUE(Source().CreateDataBlockAlias(kNodal.Duplicate(), alias));
  EXPECT_EQ(copy_datablocks(Source(), Target(), FED_DataDescriptorPattern(), SKIP_EMPTY_BLOCKS),
            2u);
  EXPECT_NE(&TargetBlock(kNodal), &TargetBlock(alias));
  ExpectSame(kNodal, kNodal);
  ExpectSame(kNodal, alias);
}

TEST_P(Copy, JobsRunInOrderUnderNewKeys) {
  NumberNodes({10, 20, 30}, {30, 10, 20});
  FillScalars(Descriptor(1, ONF_TEMPERATURE), {0, 1});
  FillScalars(Descriptor(2, ONF_TEMPERATURE), {1, 2});
  const Descriptor merged(9, ONF_TEMPERATURE), single(8, ONF_TEMPERATURE);
  const std::vector<CopyJob> jobs{Job(Descriptor(1, ONF_TEMPERATURE), merged),
                                  Job(Descriptor(2, ONF_TEMPERATURE), merged),
                                  Job(Descriptor(1, ONF_TEMPERATURE), single)};
  EXPECT_EQ(copy_datablocks(Source(), Target(), jobs, SKIP_EMPTY_BLOCKS), 3u);
  Content expected = SourceContent(Descriptor(2, ONF_TEMPERATURE));
  expected.merge(SourceContent(Descriptor(1, ONF_TEMPERATURE)));
  EXPECT_EQ(TargetContent(merged), expected) << "the later job has the last word";
  ExpectSame(Descriptor(1, ONF_TEMPERATURE), single);
}

TEST_P(Copy, RecordsWithoutMapKeepTheirIndexWhateverThatMapHolds) {
  Number(ID_TYPE_RECORD_INDEX, {0, 1, 2, 3}, {3, 2, 1, 0});
  const Descriptor custom = LabelKey("custom");
  FillScalars(Descriptor(1, ONF_FRAME_TIME), {0, 1, 3, 7});
  MakeSource(custom, "I|d").SetScalar(1, 4);
  copy_datablocks(Source(), Target(), FED_DataDescriptorPattern(), SKIP_EMPTY_BLOCKS);
  const FED_DataBlock& frames = TargetBlock(Descriptor(1, ONF_FRAME_TIME));
  for (const std::size_t index : {0u, 1u, 3u, 7u}) {
    EXPECT_EQ(frames.GetScalar(index), 100 + static_cast<double>(index));
  }
  EXPECT_EQ(TargetBlock(custom).GetScalar(1), 4);
  EXPECT_EQ(MaxIndexOf(ID_TYPE_RECORD_INDEX), 3);
}

TEST_P(Copy, LayoutsThatDifferStoreEmptyRecords) {
  const Descriptor key = LabelKey("custom");
  FED_DataBlock& from = MakeSource(key, "I|II");
  FillRecord(from, 3);
  FED_DataBlock& to = Target().CreateDataBlock(key.Duplicate(), 0, 0, "I|III");
  to.SetInteger(3, 7);
  copy_datablocks(Source(), Target(), {Job(key)}, SKIP_EMPTY_BLOCKS);
  EXPECT_EQ(to.GetInteger(3), 0) << "an assignment between them changes nothing";
}

TEST_P(Copy, SelectionsByListAndByBlock) {
  NumberNodes({10, 20, 30, 40, 50}, {50, 40, 30, 20, 10});
  FillScalars(kNodal, {0, 1, 2, 3, 4});
  FED_DataBlock& chosen = Target().CreateDataBlock(LabelKey("chosen"), 0, 0, "I|d");
  for (const std::size_t index : {1u, 2u, 4u}) chosen.SetScalar(index, 0);
  const struct {
    const char* what;
    std::function<void(const CopyJob&)> copy;
    std::vector<int> ids;
  } rows[] = {
      {"list",
       [&](const CopyJob& job) {
         copy_datablock(Source(), Target(), job, Indices{3, 1, 2, 1});
       },
       {20, 30, 40}},
      {"empty list",
       [&](const CopyJob& job) { copy_datablock(Source(), Target(), job, Indices{}); },
       {}},
      {"other block",
       [&](const CopyJob& job) { copy_datablock(Source(), Target(), job, chosen); },
       {20, 30, 50}},
  };
  for (const auto& row : rows) {
    Descriptor target = kNodal;
    target.SetInteger(Descriptor::ITERATION, 100 + static_cast<int>(&row - rows));
    row.copy(Job(kNodal, target));
    Content expected;
    const Content all = SourceContent(kNodal);
    for (const int id : row.ids) expected[std::to_string(id)] = all.at(std::to_string(id));
    EXPECT_EQ(TargetContent(target), expected) << row.what;
  }
}

// The walk ends where the selection ended at its start, and sees what the copy adds before that.
TEST_P(Copy, TargetMaySelectItself) {
  NumberNodes({1, 2, 3, 4, 5, 6}, {6, 1, 2, 3, 4, 5});
  FillScalars(kNodal, {0, 1, 2, 3, 4, 5});
  FED_DataBlock& to = Target().CreateDataBlock(kNodal.Duplicate(), 0);
  to.SetScalar(5, 0);
  to.SetScalar(2, 0);
  copy_datablock(Source(), Target(), Job(kNodal), to);
  std::vector<std::uint64_t> present;
  to.GetRecordIndices(present);
  EXPECT_THAT(present, ElementsAre(0, 2, 3, 4, 5));
}

// Names know what they mean, ids of what has a name are nobody's: both databases give them anew.
TEST_P(Copy, ReferencesToNamedEntitiesTravelByName) {
  NumberNodes({}, {});
  Number(ID_TYPE_ELEMENT, {100}, {100});
  Source().GetIdMapsPool().GetMap(ID_TYPE_MATERIAL).IndexOfNameForWrite("steel");
  Target().GetIdMapsPool().GetMap(ID_TYPE_MATERIAL).IndexOfNameForWrite("copper");
  const FED_DataDescriptor key(ONF_ELEMENT_ATTRIBUTES);
  {
    FED_IdDataBlock view(MakeSource(key), Source().GetIdMapsPool(), false);
    const qelta::ScopedCursor<FED_IdDataBlock, FED_IdDataRecord> record(view);
    record->SetString(1, "body");
    record->SetString(2, "steel");
    view.SetRecord(100, *record);
  }
  copy_datablocks(Source(), Target(), FED_DataDescriptorPattern(), SKIP_EMPTY_BLOCKS);
  const FED_ConstIdDataBlock view(TargetBlock(key), Target().GetIdMapsPool());
  const qelta::ScopedCursor<const FED_ConstIdDataBlock, FED_ConstIdDataRecord> record(view);
  view.GetRecord(100, *record);
  EXPECT_EQ(record->GetString(1), "body");
  EXPECT_EQ(record->GetString(2), "steel");
}

TEST_P(Copy, NewIdsAreRegisteredInOrder) {
  NumberNodes({10, 20, 30}, {30});
  FillScalars(kNodal, {0, 1, 2});
  copy_datablocks(Source(), Target(), FED_DataDescriptorPattern(), SKIP_EMPTY_BLOCKS);
  ExpectSame(kNodal, kNodal);
  EXPECT_EQ(Target().GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfId(10), 1);
  EXPECT_EQ(Target().GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfId(20), 2);
}

// More records than move at a time, numbered the other way round, with gaps and a new part.
TEST_P(Copy, ManyRecords) {
  constexpr std::size_t kCount = 20000;
  std::vector<std::int32_t> ids(kCount), others;
  for (std::size_t i = 0; i < kCount; ++i) ids[i] = static_cast<std::int32_t>(7 + i + i / 3);
  for (std::size_t i = kCount; i-- > 0;) {
    if (i % 5 != 0) others.push_back(ids[i]);
  }
  NumberNodes(ids, others);
  const Descriptor key(1, ONF_DISPLACEMENT), custom = LabelKey("custom");
  FED_DataBlock& from = MakeSource(key);
  FED_DataBlock& plain = MakeSource(custom, "IITT");
  for (std::size_t i = 0; i < kCount; ++i) {
    const double v[] = {static_cast<double>(ids[i]), -1, 0.5};
    if (i % 4099 != 17) from.SetVector(i, v);
    if (i % 1500 != 3) plain.SetInteger(i, ids[i]);
  }
  copy_datablocks(Source(), Target(), FED_DataDescriptorPattern(), SKIP_EMPTY_BLOCKS);
  ExpectSame(key, key);
  ExpectSame(custom, custom);
}

}  // namespace
