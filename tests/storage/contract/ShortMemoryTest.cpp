// Memory that runs out at any point leaves the database as it was before the operation.

#include "FailingAllocation.h"
#include "StorageContract.h"

namespace qelta::test {
namespace {

struct Action {
  const char* name;
  std::function<void()> run;
};

TEST_P(StorageContract, NewBlocksAndNamesAreThereWhollyOrNotAtAll) {
  const Keys world = MakeWorld();
  const auto before = DescribeAll(world);
  FED_DataDescriptor custom = CustomKey(9), catalogued(9, ONF_VELOCITY), name = LabelKey("name");
  const std::pair<FED_DataDescriptor, Action> rows[] = {
      {custom, {"custom", [&] { Db().CreateDataBlock(custom, 3, 1000, "I|SOLDd"); }}},
      {catalogued, {"catalogued", [&] { Db().CreateDataBlock(catalogued, 1000); }}},
      {name, {"alias", [&] { Db().CreateDataBlockAlias(world[0], name); }}}};
  std::size_t count = world.size();
  for (const auto& [key, action] : rows) {
    SCOPED_TRACE(action.name);
    ForEachFailingAllocation(action.run, [&, k = key] {
      EXPECT_FALSE(Has(k));
      EXPECT_EQ(All().size(), count);
      EXPECT_EQ(DescribeAll(world), before);
    });
    EXPECT_TRUE(Has(key));
    EXPECT_EQ(All().size(), ++count);
  }
}

TEST_P(StorageContract, WritingRecordsLeavesThemAsTheyWere) {
  FED_DataBlock& block = Make(CustomKey(1), "I|dV");
  Fill(block, {0, 3, 2000}, 1);
  const std::vector<double> many(4 * 3000, 1.5);
  const Action actions[] = {
      {"SetRecord nearby", [&] { WriteRecord(block, 9, Bytes(32)); }},
      {"SetRecord far away", [&] { WriteRecord(block, 50000, Bytes(32)); }},
      {"SetScalar", [&] { block.SetScalar(100000, 1); }},
      {"SetVector", [&] { block.SetVector(200000, many.data()); }},
      {"WriteRun", [&] { RunsOf(block).WriteRun(1, 3000, many.data()); }},
      {"WriteColumn", [&] { RunsOf(block).WriteColumn(2, 4000, 3000, many.data()); }}};
  for (const Action& action : actions) {
    SCOPED_TRACE(action.name);
    const std::string before = Describe(block);
    ForEachFailingAllocation(action.run, [&] { EXPECT_EQ(Describe(block), before); });
    EXPECT_NE(Describe(block), before);
  }
}

TEST_P(StorageContract, WritingContentLeavesFieldsAsTheyWere) {
  FED_DataBlock& block = Make(CustomKey(1), "I|SOLD");
  const std::vector<int> list(300, 5);
  const std::vector<double> numbers(300, 5);
  const Cursor cursor(block);
  const Action actions[] = {{"string", [&] { cursor->SetString(1, std::string(900, 'x')); }},
                            {"set", [&] { cursor->SetIntList(2, list); }},
                            {"list", [&] { cursor->SetIntList(3, list); }},
                            {"doubles", [&] { cursor->SetDoubleList(4, numbers); }}};
  for (int round = 0; round < 40; ++round) {
    for (const Action& action : actions) {
      block.SetRecord(0, *cursor);
      const std::string before = Describe(block);
      ForEachFailingAllocation(action.run, [&] {
        block.SetRecord(0, *cursor);
        EXPECT_EQ(Describe(block), before) << action.name;
      });
    }
  }
}

TEST_P(StorageContract, ReadingSavingAndReopeningLoseNothing) {
  const Keys world = MakeWorld();
  const auto before = DescribeAll(world);
  const FED_DataDescriptorPattern everything;
  const auto fetch = [&](std::size_t i) { CloseBlocks(), Get(world[i]); };
  const Action actions[] = {
      {"cursor", [&] { Cursor cursor(Get(world[0])); }},
      {"indices", [&] { Get(world[0]).GetRecordIndices(); }},
      {"field data", [&] { Get(world[0]).GetFieldData(); }},
      {"all content", [&] { DescribeAll(world); }},
      {"FindBlocks", [&] { All(); }},
      {"Save", [&] { CloseBlocks(), Save(); }},
      {"GetDataBlock", [&] { fetch(3); }},
      {"GetDataBlock of an alias", [&] { fetch(7); }},
      {"GetDataBlocks", [&] { CloseBlocks(), Db().GetDataBlocks(everything); }},
      {"CreateDataBlock", [&] { CloseBlocks(), Make(world[3], "I|d"); }},
      {"copy", [&] { GetParam().copy ? GetParam().copy(Db()) : nullptr; }}};
  for (const Action& action : actions) {
    SCOPED_TRACE(action.name);
    ForEachFailingAllocation(action.run, [&] { ASSERT_EQ(DescribeAll(world), before); });
    EXPECT_EQ(DescribeAll(world), before);
    EXPECT_EQ(&Get(world[0]), &Get(world[7]));
  }
}

TEST_P(StorageContract, DeletingTakesBlocksWhollyOrNotAtAll) {
  const Keys world = MakeWorld();
  const auto before = DescribeAll(world);
  const auto check = [&] {
    const auto after = DescribeAll(world);
    for (std::size_t i = 0; i < world.size(); ++i) {
      EXPECT_THAT(after[i], testing::AnyOf(before[i], "none")) << world[i].ToString();
    }
    EXPECT_EQ(after[0], after[6]);
    EXPECT_EQ(after[0], after[7]);
  };
  FED_DataDescriptorPattern everything;
  const Action actions[] = {
      {"by name", [&] { CloseBlocks(), Db().DeleteDataBlock(LabelKey("second")); }},
      {"by pattern", [&] { CloseBlocks(), Db().DeleteDataBlocks(everything); }}};
  for (const Action& action : actions) {
    SCOPED_TRACE(action.name);
    ForEachFailingAllocation(action.run, check);
    check();
    EXPECT_FALSE(Has(world[0]));
  }
  EXPECT_FALSE(Has(world[3]));
}

TEST_P(StorageContract, OpeningLeaksNothing) {
  ForEachFailingAllocation(
      [] {
        const auto database = GetParam().make();
        database->InitDb({}, FED_DatabaseDefs::CREATE, 0, GetParam().freshName());
      },
      [] {});
}

}  // namespace
}  // namespace qelta::test
