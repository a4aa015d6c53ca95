#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "FED_DataBlockSet.h"
#include "FailingAllocation.h"
#include "FakeBlock.h"
#include "LogLines.h"
#include "RawBytes.h"

// Every operation of the block set with every one of its allocations failing in turn.
namespace {

using namespace qelta::test;
using testing::ElementsAre;
using Descriptor = FED_DataDescriptor;
using Pattern = FED_DataDescriptorPattern;
using Action = std::function<void()>;

Descriptor Key(int iteration) { return Descriptor(iteration, ONF_TEMPERATURE); }

// Holds blocks 1 and 2, and 11 as another name of 1.
class BlockSetMemoryTest : public testing::Test {
 protected:
  BlockSetMemoryTest() {
    m_One = Store(1);
    m_Two = Store(2);
    const Descriptor one = Key(1);
    m_Set.HasBlockInstance(one);
    Descriptor alias = Key(11);
    m_Set.StoreDataBlockAlias(one, alias);
  }
  void TearDown() override {
    m_Set.Clear();
    EXPECT_EQ(FakeBlock::s_Alive, 0);
  }

  FED_DataBlock* Store(int iteration) {
    FED_DataBlock* const block = new FakeBlock(Key(iteration));
    m_Set.StoreDataBlockInstance(Key(iteration), block);
    return block;
  }

  void ExpectAsBefore() const { ExpectAsBefore(m_Set); }
  void ExpectAsBefore(const FED_DataBlockSet& set) const {
    EXPECT_THAT(set.GetDataBlocksInstances(Pattern()), ElementsAre(m_One, m_Two, m_One));
    EXPECT_EQ(&set.GetDataBlockInstance(Key(1)), m_One);
    EXPECT_EQ(&set.GetDataBlockInstance(Key(2)), m_Two);
    std::vector<const Descriptor*> aliases;
    set.GetAliases(aliases);
    EXPECT_EQ(aliases.size(), 2u);
  }

  // Until it succeeds, `action` has to leave the set as it was.
  void Try(
      const Action& action, const Action& check = [] {}) const {
    const int alive = FakeBlock::s_Alive;
    const auto failures = ForEachFailingAllocation(action, [&] {
      ExpectAsBefore();
      EXPECT_EQ(FakeBlock::s_Alive, alive);
      check();
    });
    EXPECT_GT(failures, 0u);
  }

  FED_DataBlockSet m_Set;
  FED_DataBlock* m_One;
  FED_DataBlock* m_Two;
};

TEST_F(BlockSetMemoryTest, StoreRegistersAllOrNothing) {
  // Several rounds, so that the slots grow within some of them.
  for (int position = 2; position < 20; ++position) {
    const Descriptor key = Key(100 + position);
    FED_DataBlock* stored = nullptr;
    const Action attempt = [&] {
      stored = new FakeBlock(key);
      m_Set.StoreDataBlockInstance(key, stored);
    };
    Try(attempt, [&] {
      EXPECT_LT(BlockIdOf(key), 0) << "the next block will get that position";
      EXPECT_FALSE(m_Set.HasBlockInstance(key));
      EXPECT_EQ(m_Set.FindPosition(key), -1);
    });
    EXPECT_EQ(&m_Set.GetDataBlockInstance(Key(100 + position)), stored);
    EXPECT_EQ(BlockIdOf(key), position);
    m_Set.DeleteDataBlockInstance(key);
  }
}

TEST_F(BlockSetMemoryTest, SecondStoreKeepsTheFirstBlockUntilItSucceeds) {
  FED_DataBlock* stored = nullptr;
  Try([&] {
    stored = new FakeBlock(Key(2));
    m_Set.StoreDataBlockInstance(Key(2), stored);
  });
  EXPECT_THAT(m_Set.GetDataBlocksInstances(Pattern()), ElementsAre(m_One, stored, m_One));
}

TEST_F(BlockSetMemoryTest, AliasIsRegisteredOrNot) {
  const Descriptor two = Key(2);
  ASSERT_TRUE(m_Set.HasBlockInstance(two));
  // As many as it takes until the set needs more memory.
  std::size_t failures = 0, known = 3;
  for (int i = 100; failures == 0 && i < 1000; ++i, ++known) {
    Descriptor alias = Key(i);
    const auto check = [&] {
      EXPECT_LT(BlockIdOf(alias), 0);
      EXPECT_FALSE(m_Set.HasBlockInstance(alias));
      EXPECT_EQ(m_Set.GetDataBlocksInstances(Pattern()).size(), known);
    };
    failures = ForEachFailingAllocation([&] { m_Set.StoreDataBlockAlias(two, alias); }, check);
    EXPECT_EQ(&m_Set.GetDataBlockInstance(Key(i)), m_Two);
  }
  EXPECT_GT(failures, 0u);
}

TEST_F(BlockSetMemoryTest, ReadingChangesNothing) {
  const Descriptor absent = Key(5);
  std::vector<const Descriptor*> aliases;
  const Action reads[] = {[&] { m_Set.FindBlocksInstances(Pattern()); },
                          [&] { m_Set.GetDataBlocksInstances(Pattern()); },
                          [&] { m_Set.GetAliases(aliases); },
                          [&] { m_Set.GetDataBlockInstance(absent); }};
  for (const Action& read : reads) Try(read);
  EXPECT_EQ(CacheOf(absent), (Cache{-1, -1, 0}));
}

TEST_F(BlockSetMemoryTest, LookupsAndDeletionsNeedNoMemory) {
  const Descriptor one = Key(1), absent = Key(5), alias = Key(11);
  const Action action = [&] {
    EXPECT_TRUE(m_Set.HasBlockInstance(one));
    EXPECT_FALSE(m_Set.HasBlockInstance(absent));
    EXPECT_EQ(&m_Set.GetDataBlockInstance(alias), m_One);
    m_Set.FlushToDisk();
    m_Set.DeleteDataBlockInstance(alias);
    m_Set.Clear();
  };
  EXPECT_EQ(ForEachFailingAllocation(action, [] {}), 0u);
}

TEST_F(BlockSetMemoryTest, PatternDeletionDeletesAllOrNothing) {
  const LogLines muted;
  // A log line for which there is no memory does not stop the deletion.
  const auto check = [&] { EXPECT_TRUE(FakeBlock::s_Alive == 2 || FakeBlock::s_Alive == 0); };
  EXPECT_GT(ForEachFailingAllocation([&] { m_Set.DeleteDataBlocksInstances(Pattern()); }, check),
            0u);
  EXPECT_EQ(FakeBlock::s_Alive, 0);
}

TEST_F(BlockSetMemoryTest, CopiesAreWholeOrNotMade) {
  std::unique_ptr<FED_DataBlockSet> copy;
  Try([&] { copy = std::make_unique<FED_DataBlockSet>(m_Set); });
  ExpectAsBefore(*copy);
  FED_DataBlockSet target;
  FED_DataBlock* const former = new FakeBlock(Key(2));
  target.StoreDataBlockInstance(Key(2), former);
  Try([&] { target = m_Set; },
      [&] { EXPECT_THAT(target.GetDataBlocksInstances(Pattern()), ElementsAre(former)); });
  ExpectAsBefore(target);
}

}  // namespace
