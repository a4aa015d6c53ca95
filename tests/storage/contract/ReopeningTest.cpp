// What a module that keeps its content owes to the next program that opens it.

#include "FED_MemoryIdMap.h"
#include "FED_OnfMetaData.h"
#include "StorageContract.h"

namespace qelta::test {
namespace {

constexpr auto kReadOnly = FED_DatabaseDefs::READ_ONLY;
constexpr auto kReadWrite = FED_DatabaseDefs::READ_WRITE;

class KeptContent : public StorageContract {
 protected:
  void SetUp() override {
    if (!GetParam().keepsContent) GTEST_SKIP() << "the content goes with the database";
  }

  FED_IdMap& Map(FED_IdType type) { return Db().GetIdMapsPool().GetMap(type); }
};

INSTANTIATE_TEST_SUITE_P(Modules, KeptContent, testing::ValuesIn(StorageModules()),
                         testing::PrintToStringParamName());

TEST_P(KeptContent, IsThereInEveryModeThatDoesNotReplaceIt) {
  const Keys world = MakeWorld();
  const auto before = DescribeAll(world);
  Save();
  for (const auto mode : {kReadWrite, kReadOnly, kReadWrite}) {
    Reopen(mode);
    EXPECT_EQ(All().size(), world.size());
    EXPECT_EQ(DescribeAll(world), before);
  }
  Reopen(FED_DatabaseDefs::CREATE);
  EXPECT_TRUE(All().empty());
}

// What must not reach the storage: changes without Save, and those of a reader.
TEST_P(KeptContent, IsChangedBySavesOfWritersOnly) {
  const Keys world = MakeWorld();
  Map(ID_TYPE_NODE).IndexOfIdForWrite(42);
  const auto before = DescribeAll(world);
  Save();
  for (const auto mode : {kReadWrite, kReadOnly}) {
    Reopen(mode);
    FED_DataDescriptor name = LabelKey("name");
    const std::function<void()> attempts[] = {
        [&] {
          Fill(Get(world[3]), {64, 5000}, 31);
        },
        [&] { Get(world[4]).SetScalar(5, 1.5); },
        [&] { Get(world[4]).FlushToDisk(); },
        [&] { Get(world[4]).FlushDestroy(); },
        [&] { Db().DeleteDataBlock(world[1].Duplicate()); },
        [&] { Db().CreateDataBlockAlias(world[0].Duplicate(), name); },
        [&] { Make(CustomKey(9), "I|d"); },
        [&] { Map(ID_TYPE_NODE).IndexOfIdForWrite(43); },
        [&] {
          if (mode == kReadOnly) Save();
        }};
    for (const auto& attempt : attempts) {
      try {
        attempt();
      } catch (const FED_Failure&) {
        EXPECT_EQ(mode, kReadOnly);
      }
    }
    Reopen();
    EXPECT_EQ(DescribeAll(world), before);
    EXPECT_EQ(All().size(), world.size());
    EXPECT_FALSE(Map(ID_TYPE_NODE).ContainsId(43));
  }
}

TEST_P(KeptContent, MustBeThereForReading) {
  const auto database = GetParam().make();
  EXPECT_THROW(database->InitDb({}, kReadOnly, 0, GetParam().freshName()), FED_Failure);
  EXPECT_FALSE(database->IsInitialized());
}

TEST_P(KeptContent, ForgetsTheNamesOfADeletedBlock) {
  const Keys world = MakeWorld();
  Save();
  Reopen();
  Db().DeleteDataBlock(LabelKey("second"));
  Save();
  Reopen();
  EXPECT_EQ(All().size(), world.size() - 3);
  for (const FED_DataDescriptor& key : All()) EXPECT_TRUE(Has(key)) << key.ToString();
}

FED_IdMapsPool PoolWithNodes(std::initializer_list<std::int32_t> ids) {
  FED_IdMapsPool pool;
  for (const std::int32_t id : ids) pool.GetMap(ID_TYPE_NODE).IndexOfIdForWrite(id);
  return pool;
}

TEST_P(KeptContent, IncludesTheIdMaps) {
  for (const std::int32_t id : {70, -50}) Map(ID_TYPE_NODE).IndexOfIdForWrite(id);
  Map(ID_TYPE_MATERIAL).IndexOfNameForWrite("steel \xc3\xa9");
  static_cast<FED_MemoryIdMap&>(Map(ID_TYPE_MODE)).Add(5, 9);  // leaves a gap
  Save();
  for (const FED_IdMapsPool& given :
       {FED_IdMapsPool(), PoolWithNodes({70, -50}), PoolWithNodes({70, -50, 3})}) {
    Reopen(kReadWrite, given);
    EXPECT_EQ(&Map(ID_TYPE_NODE), &given.GetMap(ID_TYPE_NODE));
    EXPECT_EQ(Map(ID_TYPE_NODE).IndexOfId(-50), 1);
    EXPECT_EQ(Map(ID_TYPE_MATERIAL).IndexOfName("steel \xc3\xa9"), 0);
    EXPECT_EQ(Map(ID_TYPE_MODE).IdOfIndex(5), 9);
    EXPECT_FALSE(Map(ID_TYPE_MODE).ContainsIndex(0));
    EXPECT_EQ(Map(ID_TYPE_LOAD_CASE).GetMaxIndex(), -1);
  }
  Save();
  Db().CloseDb();
  for (const FED_IdMapsPool& given :
       {PoolWithNodes({70, -51, 3}), PoolWithNodes({70, 3, -50}), PoolWithNodes({70})}) {
    ExpectFailure([&] { Open(kReadWrite, given); }, {FED_ID_TYPE_INFO[ID_TYPE_NODE].name, "1"});
  }
  EXPECT_EQ(Open(kReadOnly)->GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfId(3), 2);
}

// Maps that were saved go, and others come to stand where they were.
TEST_P(KeptContent, IncludesTheIdMapsThatWereSetLast) {
  for (std::int32_t last = 10; last < 15; ++last) {
    for (const std::int32_t id : {-last, 1, last}) {
      const auto map = std::make_shared<FED_MemoryIdMap>(ID_TYPE_NODE);
      map->Add(0, id);
      Db().GetIdMapsPool().SetMap(ID_TYPE_NODE, map);
      if (id != 1) Save();
    }
    Reopen();
    EXPECT_EQ(Map(ID_TYPE_NODE).IdOfIndex(0), last);
  }
}

// Has entities and cannot list them.
class EndlessMap : public FED_MemoryIdMap {
 public:
  EndlessMap() : FED_MemoryIdMap(ID_TYPE_ELEMENT) { Add(0, 1); }
  std::int64_t GetMaxIndex() const override { return -1; }
};

TEST_P(KeptContent, LeavesOutMapsThatCannotBeEnumerated) {
  const Keys world = MakeWorld();
  Db().GetIdMapsPool().SetMap(ID_TYPE_ELEMENT, std::make_shared<EndlessMap>());
  m_Log.clear();
  Save();
  const std::string name = FED_ID_TYPE_INFO[ID_TYPE_ELEMENT].name;
  EXPECT_THAT(m_Log, testing::Contains(testing::HasSubstr(name)));
  Reopen();
  EXPECT_TRUE(Has(world[0]));
  EXPECT_EQ(Map(ID_TYPE_ELEMENT).GetMaxIndex(), -1);
}

}  // namespace
}  // namespace qelta::test
