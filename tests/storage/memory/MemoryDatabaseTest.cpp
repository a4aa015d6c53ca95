#include "FED_MemoryDatabase.h"

#include <gtest/gtest.h>

#include "FED_MemoryDataBlock.h"
#include "FailureMatcher.h"

namespace qelta::test {
namespace {

FED_DataDescriptor Key(int iteration) {
  FED_DataDescriptor key;
  key.SetInteger(FED_DataDescriptor::ITERATION, iteration);
  return key;
}

class OpenDatabase : public FED_MemoryDatabase {
 public:
  OpenDatabase() { InitDb({}, FED_DatabaseDefs::CREATE, 0, FED_DEFAULT_DATABASE_NAME); }
  using FED_Database::SaveData;
};

TEST(MemoryDatabase, AnAssignedOneSharesContentAndDropsItsOwn) {
  OpenDatabase source, target;
  FED_DataDescriptor alias = Key(2);
  source.CreateDataBlock(Key(1), 0, 0, "I|d").SetScalar(0, 1.5);
  source.CreateDataBlockAlias(Key(1), alias);
  target.CreateDataBlock(Key(3), 0, 0, "I|d");
  target.SaveData();
  EXPECT_TRUE(target.HasBlock(Key(3)));

  target = source;
  target = *&target;
  EXPECT_FALSE(target.HasBlock(Key(3)));
  target.SaveData();
  EXPECT_EQ(target.GetDataBlock(Key(2)).GetScalar(0), 1.5);
  EXPECT_EQ(&target.GetDataBlock(Key(1)), &target.GetDataBlock(Key(2)));
  EXPECT_EQ(&target.GetIdMapsPool().GetMap(ID_TYPE_NODE),
            &source.GetIdMapsPool().GetMap(ID_TYPE_NODE));
  target.GetDataBlock(Key(2)).SetScalar(0, 2.5);
  EXPECT_EQ(source.GetDataBlock(Key(1)).GetScalar(0), 2.5);

  target = OpenDatabase();
  EXPECT_TRUE(target.IsInitialized());
  EXPECT_FALSE(target.HasBlock(Key(1)));
  EXPECT_TRUE(source.HasBlock(Key(2)));
}

TEST(MemoryDatabase, AFullBlockGivesOutNoHandle) {
  const auto content = std::make_shared<MemoryContent>("I|S", 4);
  content->lists = MemoryArena(2);
  FED_DataBlockSet blocks;
  auto* const block =
      new FED_MemoryDataBlock(Key(56), "I|S", std::make_shared<MemoryStore>(), content);
  blocks.StoreDataBlockInstance(Key(56), block);
  const std::uint64_t first = block->SetString("first");
  block->SetIntList(nullptr, 0);
  const double number = 1;
  const FED_Failure failures[] = {CatchFailure([&] { block->SetString("third"); }),
                                  CatchFailure([&] { block->SetIntList(nullptr, 0); }),
                                  CatchFailure([&] { block->SetDoubleList(&number, 1); })};
  for (const FED_Failure& failure : failures) {
    EXPECT_NE(failure.GetMessageText().find("ITERATION=56"), std::string::npos);
  }
  std::string text;
  block->GetString(first, text);
  EXPECT_EQ(text, "first");
}

}  // namespace
}  // namespace qelta::test
