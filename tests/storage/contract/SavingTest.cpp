// What SaveData closes is found again, whichever operation comes first and under whichever name.

#include <algorithm>

#include "StorageContract.h"

namespace qelta::test {
namespace {

// An operation that must find a block which is closed.
struct Touch {
  const char* name;
  std::function<bool(FED_Database&, const FED_DataDescriptor&)> finds;
};

const Touch kTouches[] = {
    {"HasBlock", [](auto& database, auto& key) { return database.HasBlock(key); }},
    {"GetDataBlock",
     [](auto& database, auto& key) { return database.GetDataBlock(key).GetMaxIndex() >= 0; }},
    {"GetDataBlock const",
     [](auto& database, auto& key) {
       return std::as_const(database).GetDataBlock(key).GetMaxIndex() >= 0;
     }},
    {"FetchDataBlock",
     [](auto& database, auto& key) { return database.FetchDataBlock(key, 0).GetMaxIndex() >= 0; }},
    {"FetchDataBlock with format",
     [](auto& database, auto& key) {
       return database.FetchDataBlock(key, 1, 1, "I|f").GetMaxIndex() >= 0;
     }},
    {"GetDataBlocks",
     [](auto& database, auto& key) {
       return database.GetDataBlocks(FED_DataDescriptorPattern(key)).size() == 1;
     }},
    {"CreateDataBlock",
     [](auto& database, auto& key) {
       ExpectFailure([&] { database.CreateDataBlock(key, 0); }, {key.ToString()});
       ExpectFailure([&] { database.CreateDataBlock(key, 0, 0, "I|d"); }, {key.ToString()});
       return true;
     }},
    {"CreateDataBlockAlias of it",
     [](auto& database, auto& key) {
       static int s_Count = 0;
       FED_DataDescriptor name = LabelKey("another " + std::to_string(++s_Count));
       return database.CreateDataBlockAlias(key, name);
     }},
    {"CreateDataBlockAlias over it", [](auto& database, auto& key) {
       FED_DataDescriptor copy = key.Duplicate();
       return !database.CreateDataBlockAlias(LabelKey("third"), copy);
     }}};

TEST_P(StorageContract, EveryOperationFindsABlockAgain) {
  const Keys world = MakeWorld();
  const auto before = DescribeAll(world);
  for (const WayToSave& way : WaysToSave()) {
    for (const Touch& touch : kTouches) {
      for (const FED_DataDescriptor& key : {world[0], world[3], LabelKey("second")}) {
        SCOPED_TRACE(way.name + ", " + touch.name + " " + key.ToString());
        FED_DataDescriptor resolved = key.Duplicate();
        ASSERT_TRUE(Db().HasBlock(resolved));
        way.run();
        EXPECT_TRUE(touch.finds(Db(), way.keepsPositions ? resolved : key.Duplicate()));
        ASSERT_EQ(DescribeAll(world), before);
        EXPECT_EQ(&Get(LabelKey("first")), &Get(world[0]));
        EXPECT_TRUE(Get(LabelKey("second")).GetDescriptor().EqualTo(world[0]));
      }
    }
  }
}

TEST_P(StorageContract, PatternsFindAllBlocksAgain) {
  const Keys world = MakeWorld();
  for (const WayToSave& way : WaysToSave()) {
    SCOPED_TRACE(way.name);
    way.run();
    const Keys found = All();
    ASSERT_EQ(found.size(), world.size());
    EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
    const auto blocks = Db().GetDataBlocks(FED_DataDescriptorPattern());
    ASSERT_EQ(blocks.size(), found.size());
    for (std::size_t i = 0; i < found.size(); ++i) EXPECT_EQ(blocks[i], &Get(found[i]));
    Fill(*blocks[0], {way.name.size(), 3000}, 22);
    const auto written = DescribeAll(world);
    way.run();
    EXPECT_EQ(DescribeAll(world), written);
  }
}

TEST_P(StorageContract, ADeletedBlockStaysAway) {
  for (const WayToSave& way : WaysToSave()) {
    for (const std::size_t name : {0u, 6u, 7u}) {  // one block
      SCOPED_TRACE(way.name + ", name " + std::to_string(name));
      const Keys world = MakeWorld();
      auto expected = DescribeAll(world);
      for (const std::size_t gone : {0u, 6u, 7u}) expected[gone] = "none";
      way.run();
      Db().DeleteDataBlock(way.keepsPositions ? world[name] : world[name].Duplicate());
      EXPECT_EQ(DescribeAll(world), expected);
      way.run();
      EXPECT_EQ(DescribeAll(world), expected);
      // A new block under the same key has nothing of the former one, not even its names.
      EXPECT_EQ(Db().CreateDataBlock(world[0].Duplicate(), 0).GetMaxIndex(), -1);
      way.run();
      EXPECT_EQ(Get(world[0]).GetMaxIndex(), -1);
      EXPECT_FALSE(Has(world[6]) || Has(world[7]));
      way.run();
      Db().DeleteDataBlocks(FED_DataDescriptorPattern());
      for (const FED_DataDescriptor& key : world) EXPECT_FALSE(Has(key)) << key.ToString();
    }
  }
}

}  // namespace
}  // namespace qelta::test
