// How a database begins and ends, what it answers outside its life, and what it shares.

#include "FED_MemoryIdMap.h"
#include "StorageContract.h"

namespace qelta::test {
namespace {

constexpr auto kCreate = FED_DatabaseDefs::CREATE;

void ExpectServesNothing(FED_Database& database, const FED_DataDescriptor& key) {
  FED_DataDescriptor name = LabelKey("name");
  EXPECT_FALSE(database.IsInitialized());
  EXPECT_FALSE(database.HasBlock(key));
  EXPECT_TRUE(database.FindBlocks(FED_DataDescriptorPattern()).empty());
  EXPECT_TRUE(database.GetDataBlocks(FED_DataDescriptorPattern()).empty());
  EXPECT_FALSE(database.CreateDataBlockAlias(key, name));
  EXPECT_NO_THROW(database.DeleteDataBlock(key));
  EXPECT_THROW(database.GetDataBlock(key), FED_Failure);
  EXPECT_THROW(database.CreateDataBlock(CustomKey(5), 0, 0, "I|d"), FED_Failure);
  EXPECT_THROW(database.FetchDataBlock(FED_DataDescriptor(5, ONF_VELOCITY), 0), FED_Failure);
}

TEST_P(StorageContract, ServesNothingBeforeItIsInitialisedAndAfterItWasClosed) {
  const auto database = GetParam().make();
  ExpectServesNothing(*database, CustomKey(1));
  EXPECT_NO_THROW(database->CloseDb());
  const FED_DataDescriptor key = CustomKey(1);  // remembers its position
  Make(key, "I|d");
  Db().CloseDb();
  ExpectServesNothing(Db(), key);
  EXPECT_NO_THROW(Db().CloseDb());
}

TEST_P(StorageContract, IsInitialisedOnceOnly) {
  const Keys world = MakeWorld();
  const auto before = DescribeAll(world);
  const auto again = [&] { Db().InitDb({}, kCreate, 0, GetParam().freshName()); };
  EXPECT_THROW(again(), FED_Failure);
  EXPECT_EQ(DescribeAll(world), before);
  Db().CloseDb();
  EXPECT_THROW(again(), FED_Failure);
}

TEST_P(StorageContract, TakesAnyCacheSizeAndCreatesWhatIsAbsent) {
  const std::uint64_t sizes[] = {0, 1, 4096, std::uint64_t{1} << 40, ~std::uint64_t{0}};
  for (const std::uint64_t size : sizes) {
    const auto database = GetParam().make();
    database->InitDb({}, FED_DatabaseDefs::READ_WRITE, size, GetParam().freshName());
    EXPECT_TRUE(database->FindBlocks(FED_DataDescriptorPattern()).empty());
    FED_DataBlock& block = database->CreateDataBlock(CustomKey(1), 0, 0, "I|d");
    block.SetScalar(3, 1.5);
    EXPECT_EQ(block.GetScalar(3), 1.5) << size;
  }
}

TEST_P(StorageContract, OpenForReadingCreatesNothing) {
  Save();
  Reopen(FED_DatabaseDefs::READ_ONLY);
  EXPECT_TRUE(Db().IsInitialized());
  EXPECT_THROW(Make(CustomKey(1), "I|d"), FED_Failure);
  EXPECT_THROW(Db().FetchDataBlock(FED_DataDescriptor(1, ONF_VELOCITY), 0), FED_Failure);
  EXPECT_TRUE(All().empty());
}

TEST_P(StorageContract, DatabasesThatWereOpenedSeparatelyShareNothing) {
  const auto other = GetParam().make();
  other->InitDb({}, kCreate, 0, GetParam().freshName());
  const FED_DataBlock& mine = Make(CustomKey(1), "I|d");
  Make(CustomKey(4), "I|d");
  other->CreateDataBlock(CustomKey(2), 0, 0, "I|d").SetScalar(0, 2);
  FED_DataBlock& common = Make(CustomKey(3), "I|d");
  common.SetScalar(0, 3);
  other->CreateDataBlock(CustomKey(3), 0, 0, "I|d").SetScalar(0, 4);
  EXPECT_FALSE(Has(CustomKey(2)));
  // The descriptor of a block remembers nothing, so it means its key in any database.
  EXPECT_FALSE(other->HasBlock(mine.GetDescriptor()));
  EXPECT_TRUE(other->HasBlock(common.GetDescriptor()));
  CloseBlocks();
  Db().DeleteDataBlock(CustomKey(1));
  EXPECT_EQ(Get(CustomKey(3)).GetScalar(0), 3);
  EXPECT_EQ(other->GetDataBlock(CustomKey(3)).GetScalar(0), 4);
  EXPECT_EQ(other->GetDataBlock(CustomKey(2)).GetScalar(0), 2);
}

TEST_P(StorageContract, ThePoolOfMapsIsAHandle) {
  FED_IdMapsPool pool;
  const auto database = GetParam().make();
  database->InitDb(pool, kCreate, 0, GetParam().freshName());
  for (int number = 0; number < 16; ++number) {
    const auto type = static_cast<FED_IdType>(number);
    EXPECT_EQ(&database->GetIdMapsPool().GetMap(type), &pool.GetMap(type));
    EXPECT_EQ(&std::as_const(*database).GetIdMapsPool().GetMap(type), &pool.GetMap(type));
    EXPECT_EQ(pool.GetMap(type).GetMaxIndex(), -1);
    EXPECT_NE(&Db().GetIdMapsPool().GetMap(type), &pool.GetMap(type));
  }
  database->GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfIdForWrite(42);
  EXPECT_EQ(pool.GetMap(ID_TYPE_NODE).IndexOfId(42), 0);
  const auto map = std::make_shared<FED_MemoryIdMap>(ID_TYPE_MODE);
  pool.SetMap(ID_TYPE_MODE, map);
  EXPECT_EQ(&database->GetIdMapsPool().GetMap(ID_TYPE_MODE), map.get());
}

TEST_P(StorageContract, ACopySharesContentAndBlocks) {
  if (!GetParam().copy) GTEST_SKIP() << "databases of this module cannot be copied";
  EXPECT_FALSE(GetParam().copy(*GetParam().make())->IsInitialized());
  const Keys world = MakeWorld();
  auto before = DescribeAll(world);
  const auto copy = GetParam().copy(Db());
  GetParam().copy(Db());  // goes at once, the blocks stay
  const auto blockOfCopy = [&](const FED_DataDescriptor& key) -> FED_DataBlock& {
    return copy->GetDataBlock(key.Duplicate());
  };
  EXPECT_EQ(&blockOfCopy(world[0]), &Get(world[0]));

  CloseBlocks();  // of the original alone
  EXPECT_EQ(DescribeAll(world), before);
  GetParam().closeBlocks(*copy);
  CloseBlocks();
  Fill(blockOfCopy(world[4]), {6}, 13);
  EXPECT_NE(DescribeAll(world), before);
  before = DescribeAll(world);
  Db().CloseDb();
  for (std::size_t i = 0; i < world.size(); ++i) {
    EXPECT_EQ(Describe(blockOfCopy(world[i])), before[i]);
  }
  EXPECT_EQ(&blockOfCopy(LabelKey("second")), &blockOfCopy(world[0]));
}

}  // namespace
}  // namespace qelta::test
