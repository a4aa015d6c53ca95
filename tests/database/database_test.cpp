#include "FED_Database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FailureMatcher.h"
#include "FakeDatabase.h"
#include "ScopedEnvironment.h"

namespace {

using namespace qelta::test;
using testing::ElementsAre;
using Descriptor = FED_DataDescriptor;

Descriptor Key(int iteration) { return Descriptor(iteration, ONF_TEMPERATURE); }

Descriptor CustomKey(int state) {
  Descriptor key;
  key.SetInteger(Descriptor::STATE, state);
  return key;
}

TEST(Database, InitHandsEverythingToOpen) {
  FakeDatabase database;
  const FED_IdMapsPool pool;
  database.InitDb(pool, FED_DatabaseDefs::CREATE, 4096, FED_DEFAULT_DATABASE_NAME);
  ASSERT_EQ(database.openings.size(), 1u);
  const FakeDatabase::Opening& opening = database.openings[0];
  EXPECT_EQ(opening.mode, 2);
  EXPECT_EQ(opening.cacheSize, 4096u);
  EXPECT_EQ(opening.name, L"optimization_database");
  EXPECT_EQ(opening.pool, &pool);
}

// Notes the questions that the base asks through the virtual table.
class AskedDatabase : public FakeDatabase {
 public:
  bool HasBlock(const Descriptor& descriptor) const override {
    asked.push_back("Has " + descriptor.ToString());
    return FakeDatabase::HasBlock(descriptor);
  }
  using FakeDatabase::GetDataBlock;
  FED_DataBlock& GetDataBlock(const Descriptor& descriptor) override {
    asked.push_back("Get " + descriptor.ToString());
    return FakeDatabase::GetDataBlock(descriptor);
  }
  mutable std::vector<std::string> asked;
};

TEST(Database, FetchCreatesOnceAndAsksThroughTheVirtualTable) {
  AskedDatabase database;
  const Descriptor key = Key(1);
  FED_DataBlock& block = database.FetchDataBlock(key, 7);
  EXPECT_EQ(&database.FetchDataBlock(Key(1), 9), &block);
  const std::uint64_t before = Descriptor::s_ComparisonCounter;
  EXPECT_EQ(&database.FetchDataBlock(key, 0, 0, "I|d"), &block);
  EXPECT_EQ(Descriptor::s_ComparisonCounter, before) << "found without a second search";
  const std::string text = "ITERATION=1/ONF=106";
  EXPECT_THAT(database.asked, ElementsAre("Has " + text, "Has " + text, "Get " + text,
                                          "Has " + text, "Get " + text));
  FED_DataBlock& custom = database.FetchDataBlock(CustomKey(1), -5, -1, "S|dS");
  EXPECT_EQ(&database.FetchDataBlock(CustomKey(1), 3), &custom);
  EXPECT_THAT(database.created, ElementsAre("7", "S|dS -5 -1"));
  EXPECT_THAT(database.GetDataBlocks({}), ElementsAre(&block, &custom));
  EXPECT_EQ(&static_cast<const FED_Database&>(database).GetDataBlock(Key(1)), &block);
}

std::size_t AliasCount(const FakeDatabase& database) {
  std::vector<const Descriptor*> aliases;
  database.m_BlockSet.GetAliases(aliases);
  return aliases.size();
}

TEST(DatabaseAlias, TestsRunInOrderAndChangeNothing) {
  AskedDatabase database;
  database.FetchDataBlock(CustomKey(1), 0, 0, "I|d");
  database.FetchDataBlock(CustomKey(2), 0, 0, "I|d");
  Descriptor leftover;  // specifies nothing, but its slots once held something
  leftover.SetInteger(Descriptor::STATE, 4);
  leftover.Unset(Descriptor::STATE);
  const struct {
    const char* what;
    Descriptor existing, alias;
    std::vector<std::string> asked;
  } rows[] = {
      {"equal", CustomKey(1), CustomKey(1), {}},
      {"equal and absent", CustomKey(7), CustomKey(7), {}},
      {"both empty", Descriptor(), leftover, {}},
      {"absent", CustomKey(7), CustomKey(2), {"Has STATE=7"}},
      {"taken", CustomKey(1), CustomKey(2), {"Has STATE=1", "Has STATE=2"}},
      {"empty alias", CustomKey(1), leftover, {"Has STATE=1", "Has (empty)"}},
      {"empty and absent", Descriptor(), CustomKey(7), {"Has (empty)"}},
  };
  for (const auto& row : rows) {
    database.asked.clear();
    Descriptor alias = row.alias;
    EXPECT_FALSE(database.CreateDataBlockAlias(row.existing, alias)) << row.what;
    EXPECT_EQ(database.asked, row.asked) << row.what;
    EXPECT_EQ(AliasCount(database), 0u) << row.what;
    EXPECT_EQ(database.FindBlocks({}).size(), 2u) << row.what;
  }
  // A block under a key that specifies nothing is no ground for an alias either.
  database.FetchDataBlock(leftover, 0, 0, "I|d");
  Descriptor alias = CustomKey(9);
  EXPECT_FALSE(database.CreateDataBlockAlias(Descriptor(), alias));
  EXPECT_EQ(AliasCount(database), 0u);
}

TEST(DatabaseCacheSize, EnvironmentOverridesTheRequest) {
  const std::uint64_t terabyte = std::uint64_t{1} << 40;
  const struct {
    const char* variable;
    std::uint64_t requested, size;
  } rows[] = {
      {nullptr, 0, 0},
      {nullptr, 1, 1024},
      {nullptr, 1023, 1024},
      {nullptr, 1024, 1024},
      {nullptr, 1025, 2048},
      {nullptr, terabyte + 1, terabyte + 1024},
      {"5000", 0, 5120},
      {"5000", terabyte, 5120},
      {"1", 5000, 1024},
      {"2147483647", 1, std::uint64_t{1} << 31},
      {" 5000 ", 1, 5120},
      {"0", 1025, 2048},
      {"-4", 1025, 2048},
      {"", 1025, 2048},
      {"   ", 1025, 2048},
      {"many", 1025, 2048},
      {"12k", 1025, 2048},
      {"5000.5", 1025, 2048},
      {"0x1000", 1025, 2048},
      {"2147483648", 1025, 2048},
      {"99999999999999999999", 1025, 2048},
  };
  for (const auto& row : rows) {
    const ScopedEnvironment environment("vtm_cache_size", row.variable);
    EXPECT_EQ(FakeDatabase::GetCacheSize(row.requested), row.size)
        << (row.variable == nullptr ? "unset" : row.variable) << " for " << row.requested;
  }
}

TEST(Database, DestructionDeletesWithoutFlushing) {
  FakeBlock::Calls calls;
  {
    FakeDatabase database;
    database.blockCalls = &calls;
    database.FetchDataBlock(Key(1), 0);
  }
  EXPECT_THAT(calls, ElementsAre(".~"));
}

}  // namespace
