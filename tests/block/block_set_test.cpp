#include "FED_DataBlockSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "FailureMatcher.h"
#include "FakeBlock.h"
#include "FakeDatabase.h"
#include "LogLines.h"
#include "RawBytes.h"

namespace {

using namespace qelta::test;
using testing::ElementsAre;
using testing::IsEmpty;
using Descriptor = FED_DataDescriptor;
using Pattern = FED_DataDescriptorPattern;

const std::string kLocation = "|%P|QeltaDataBlock|FED_DataBlockSet";
constexpr char kTableFailure[] = "133455270312";
constexpr char kBlockFailure[] = "133456270312";

Descriptor Key(int iteration) { return Descriptor(iteration, ONF_TEMPERATURE); }

Pattern IterationsFrom(int first) {
  Pattern pattern;
  pattern.SetMatchGreaterEqual(Descriptor::ITERATION, first);
  return pattern;
}

// What is registered, by iterations.
std::vector<int> KeysOf(const FED_DataBlockSet& set) {
  std::vector<int> keys;
  for (const Descriptor& d : set.FindBlocksInstances(IterationsFrom(-1))) {
    keys.push_back(d.GetInteger(Descriptor::ITERATION));
  }
  return keys;
}
std::vector<int> AliasesOf(const FED_DataBlockSet& set) {
  std::vector<const Descriptor*> stored;
  set.GetAliases(stored);
  std::vector<int> keys;
  for (const Descriptor* key : stored) keys.push_back(key->GetInteger(Descriptor::ITERATION));
  return keys;
}

// Runs `action`, which must not compare descriptors unless it may search.
void Guarded(bool maySearch, const std::function<void()>& action) {
  const std::uint64_t before = Descriptor::s_ComparisonCounter;
  action();
  EXPECT_TRUE(maySearch || Descriptor::s_ComparisonCounter == before);
}

class BlockSetTest : public testing::Test {
 protected:
  void TearDown() override {
    m_Set.Clear();
    EXPECT_EQ(FakeBlock::s_Alive, 0);
  }

  FED_DataBlock* Store(const Descriptor& key, const char* name = "") {
    FED_DataBlock* const block = new FakeBlock(key.Duplicate(), &m_Calls, name);
    m_Set.StoreDataBlockInstance(key, block);
    return block;
  }
  FED_DataBlock* Store(int key, const char* name = "") { return Store(Key(key), name); }

  void Alias(int existing, int alias) {
    const Descriptor key = Key(existing);
    ASSERT_TRUE(m_Set.HasBlockInstance(key));
    Descriptor other = Key(alias);
    m_Set.StoreDataBlockAlias(key, other);
    EXPECT_EQ(BlockIdOf(other), BlockIdOf(key));
  }

  FED_DataBlock* Find(const Descriptor& key) const { return &m_Set.GetDataBlockInstance(key); }
  FED_DataBlock* Find(int key) const { return Find(Key(key)); }

  FakeBlock::Calls m_Calls;
  FED_DataBlockSet m_Set;
};

// Registered: 0 (position 0, deleted), 1 and 2 (at their positions); the store count is 3.
TEST_F(BlockSetTest, LookupsWithEveryStateOfTheCache) {
  const struct {
    const char* what;
    int key, blockId;
    std::uint64_t stamp;
    int has, got;  // positions of the blocks found, or -1
    bool hasSearches;
  } rows[] = {
      {"unknown, registered", 1, -1, 0, 1, 1, true},
      {"unknown, deleted", 0, -1, 0, -1, -1, true},
      {"unknown, never stored", 9, -1, 0, -1, -1, true},
      {"position", 1, 1, 0, 1, 1, false},
      {"position of another key", 1, 2, 0, 2, 2, false},
      {"position, never stored", 9, 2, 0, 2, 2, false},
      {"empty position, registered elsewhere", 1, 0, 0, 1, -1, true},
      {"empty position", 0, 0, 0, -1, -1, true},
      {"position beyond the end", 1, 3, 0, 1, -1, true},
      {"highest position, never stored", 9, 2147483647, 0, -1, -1, true},
      {"absent as of now, though registered", 1, -2, 3, -1, 1, false},
      {"absent before a store", 1, -2, 2, 1, 1, true},
      {"absent with a stamp ahead", 1, -2, 4, 1, 1, true},
      {"absent before a store, never stored", 9, -2, 2, -1, -1, true},
  };
  std::vector<FED_DataBlock*> blocks;
  for (int i = 0; i < 3; ++i) blocks.push_back(Store(i));
  m_Set.DeleteDataBlockInstance(Key(0));
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Descriptor key = Key(row.key);
    WriteCache(key, {7, row.blockId, row.stamp});
    Guarded(row.hasSearches, [&] { EXPECT_EQ(m_Set.HasBlockInstance(key), row.has >= 0); });
    EXPECT_EQ(CacheOf(key), row.has >= 0 ? (Cache{7, row.has, row.stamp}) : (Cache{7, -2, 3}));

    WriteCache(key, {7, row.blockId, row.stamp});
    const bool cached = row.blockId >= 0;
    Guarded(!cached, [&] {
      if (row.got >= 0) {
        EXPECT_EQ(Find(key), blocks[static_cast<std::size_t>(row.got)]);
      } else {
        ExpectFailure([&] { Find(key); }, cached ? kTableFailure : kBlockFailure, kLocation,
                      std::string(cached ? "Table" : "Datablock") + " for descriptor:\n " +
                          key.ToString() + " \n is not present in the database.");
      }
    });
    EXPECT_EQ(CacheOf(key), (Cache{7, row.got >= 0 ? row.got : row.blockId, row.stamp}));
  }
}

TEST_F(BlockSetTest, AbsentDescriptorsWakeWithTheNextStore) {
  const Descriptor key = Key(5), other = Key(6);
  for (const Descriptor* absent : {&key, &other}) {
    EXPECT_FALSE(m_Set.HasBlockInstance(*absent));
    EXPECT_EQ(CacheOf(*absent), (Cache{-1, -2, 0}));
    EXPECT_EQ(FailureId([&] { Find(*absent); }), kBlockFailure);
  }
  FED_DataBlock* const block = Store(key);
  Guarded(false, [&] { EXPECT_EQ(Find(key), block); });
  EXPECT_FALSE(m_Set.HasBlockInstance(other));
  EXPECT_EQ(CacheOf(other), (Cache{-1, -2, 1}));
  Alias(5, 6);
  EXPECT_TRUE(m_Set.HasBlockInstance(other));
}

TEST_F(BlockSetTest, SecondStoreAndAliasRefreshTheStoredKey) {
  const Descriptor key = Key(1);
  FED_DataBlock* const first = Store(key, "first");
  const Descriptor remembers = key;
  FED_DataBlock* const second = Store(key.Duplicate(), "second");
  EXPECT_EQ(Find(remembers), first) << "its position still holds a block";
  EXPECT_EQ(Find(1), second);
  EXPECT_THAT(m_Set.GetDataBlocksInstances(Pattern()), ElementsAre(second));
  m_Set.FlushToDisk();
  m_Set.DeleteDataBlockInstance(key);
  EXPECT_EQ(FakeBlock::s_Alive, 1) << "the former block stays owned";
  FED_DataBlock* const third = Store(2, "third");
  FED_DataBlock* const fourth = Store(3, "fourth");
  Alias(2, 3);
  EXPECT_THAT(m_Set.GetDataBlocksInstances(Pattern()), ElementsAre(third, third));
  EXPECT_NE(third, fourth);
  m_Set.Clear();
  EXPECT_THAT(m_Calls, ElementsAre("second.FlushToDisk", "second.DeleteData", "second.~", "first.~",
                                   "third.~", "fourth.~"));
}

TEST_F(BlockSetTest, AliasesLeadToTheSameBlock) {
  FED_DataBlock* const block = Store(3);
  FED_DataBlock* const other = Store(5);
  Alias(3, 9);
  Alias(9, 1);
  Alias(5, 4);
  const auto resolve = [&] {
    EXPECT_THAT(m_Set.GetDataBlocksInstances(Pattern()),
                ElementsAre(block, block, other, other, block));
  };
  Guarded(false, resolve);
  EXPECT_THAT(KeysOf(m_Set), ElementsAre(1, 3, 4, 5, 9));
  EXPECT_THAT(AliasesOf(m_Set), ElementsAre(1, 3, 9, 4, 5)) << "by position, then by key";
  // Only appends, and the stored keys stay where they are while others come and go.
  std::vector<const Descriptor*> stored(1), later(1);
  m_Set.GetAliases(stored);
  EXPECT_EQ(stored[0], nullptr);
  for (int i = 100; i < 400; ++i) Store(i);
  for (int i = 100; i < 400; ++i) m_Set.DeleteDataBlockInstance(Key(i));
  m_Set.GetAliases(later);
  EXPECT_EQ(later, stored);
}

TEST_F(BlockSetTest, DeletingThroughAnyNameEmptiesThePosition) {
  for (const int deleted : {3, 9}) {
    const int left = 12 - deleted;
    Store(3, "b");
    Alias(3, 9);
    const Descriptor remembers = Key(left), unresolved = Key(left);
    EXPECT_TRUE(m_Set.HasBlockInstance(remembers));
    m_Calls.clear();
    m_Set.DeleteDataBlockInstance(Key(deleted));
    EXPECT_THAT(m_Calls, ElementsAre("b.DeleteData", "b.~"));
    EXPECT_EQ(FailureId([&] { Find(remembers); }), kTableFailure);
    EXPECT_EQ(FailureId([&] { Find(unresolved); }), kBlockFailure);
    EXPECT_EQ(FailureId([&] { m_Set.GetDataBlocksInstances(Pattern()); }), kTableFailure);
    EXPECT_FALSE(m_Set.HasBlockInstance(remembers));
    m_Set.DeleteDataBlockInstance(Key(left));
    m_Set.DeleteDataBlockInstance(Key(77));
    EXPECT_THAT(KeysOf(m_Set), ElementsAre(left)) << "a name without a block stays";
    m_Set.Clear();
  }
}

TEST_F(BlockSetTest, DeletionTrustsTheKeyAlone) {
  FED_DataBlock* const block = Store(3);
  FED_DataBlock* const other = Store(4);
  Descriptor wrong = Key(7);
  WriteCache(wrong, {-1, 1, 0});
  m_Set.DeleteDataBlockInstance(wrong);
  EXPECT_EQ(Find(4), other);
  // The key may be one that goes with the deletion.
  m_Set.DeleteDataBlockInstance(block->GetDescriptor());
  EXPECT_THAT(KeysOf(m_Set), ElementsAre(4));
  Alias(4, 6);
  std::vector<const Descriptor*> stored;
  m_Set.GetAliases(stored);
  m_Set.DeleteDataBlockInstance(*stored[1]);
  EXPECT_THAT(KeysOf(m_Set), ElementsAre(4));
}

TEST_F(BlockSetTest, PatternDeletionReportsTheNumberSelected) {
  for (const int key : {1, 2, 3}) Store(key, "b");
  Alias(2, 4);
  const LogLines log;
  m_Set.DeleteDataBlocksInstances(IterationsFrom(10));
  EXPECT_THAT(m_Calls, IsEmpty());
  m_Set.DeleteDataBlocksInstances(IterationsFrom(2));
  EXPECT_THAT(m_Calls, ElementsAre("b.DeleteData", "b.~", "b.DeleteData", "b.~"));
  EXPECT_THAT(KeysOf(m_Set), ElementsAre(1, 4)) << "the alias found the position empty";
  std::vector<std::string> expected, lines;
  for (const auto& [first, number] : {std::pair{10, "0"}, {2, "3"}}) {
    expected.push_back('7' + kLocation + "Descriptor pattern " + IterationsFrom(first).ToString() +
                       " matched " + number + " data blocks");
  }
  for (const auto& line : log.lines) {
    lines.push_back(std::to_string(line.type) + line.location + line.text);
  }
  EXPECT_EQ(lines, expected);
}

TEST_F(BlockSetTest, FlushAndClearVisitInTheirOrders) {
  const Descriptor key = Key(5);
  Store(key, "five");
  Store(2, "two");
  Alias(5, 1);
  Alias(5, 9);
  Store(7, "gone");
  m_Set.DeleteDataBlockInstance(Key(7));
  m_Calls.clear();
  m_Set.FlushToDisk();
  EXPECT_THAT(m_Calls, ElementsAre("five.FlushToDisk", "two.FlushToDisk", "five.FlushToDisk",
                                   "five.FlushToDisk"));
  m_Calls.clear();
  m_Set.Clear();
  EXPECT_THAT(m_Calls, ElementsAre("five.~", "two.~"));
  EXPECT_THAT(KeysOf(m_Set), IsEmpty());
  EXPECT_FALSE(m_Set.HasBlockInstance(key));
  EXPECT_EQ(CacheOf(key), (Cache{-1, -2, 0})) << "the store count starts again";
  Store(key);
  EXPECT_EQ(BlockIdOf(key), 0) << "and so do the positions";
}

TEST_F(BlockSetTest, SaveFlushesOncePerBlockAndKeepsTheKeys) {
  FakeDatabase database;
  FED_DataBlockSet& set = database.m_BlockSet;
  for (const auto& [key, name] : {std::pair{5, "five"}, {2, "two"}}) {
    set.StoreDataBlockInstance(Key(key), new FakeBlock(Key(key), &m_Calls, name));
  }
  Descriptor alias = Key(1);
  const Descriptor absent = Key(77);
  EXPECT_TRUE(database.CreateDataBlockAlias(Key(5), alias));
  EXPECT_FALSE(set.HasBlockInstance(absent));
  database.SaveData();
  database.SaveData();
  EXPECT_THAT(m_Calls, ElementsAre("five.FlushToDisk", "five.~", "two.FlushToDisk", "two.~"));
  EXPECT_THAT(KeysOf(set), ElementsAre(1, 2, 5));
  EXPECT_THAT(AliasesOf(set), ElementsAre(1, 5));
  EXPECT_EQ(FailureId([&] { set.GetDataBlocksInstances(IterationsFrom(5)); }), kTableFailure);
  Guarded(false, [&] { EXPECT_FALSE(set.HasBlockInstance(absent)); });
  const Descriptor again = Key(5);
  set.StoreDataBlockInstance(again, new FakeBlock(again));
  EXPECT_EQ(BlockIdOf(again), 2);
  EXPECT_FALSE(set.HasBlockInstance(alias)) << "aliases have to be stored again";
}

TEST_F(BlockSetTest, CopiesShareTheBlocks) {
  FED_DataBlock* const one = Store(1, "one");
  Store(2, "two");
  Alias(1, 3);
  {
    FED_DataBlockSet copy(m_Set), assigned;
    copy.StoreDataBlockInstance(Key(4), new FakeBlock(Key(4), &m_Calls, "four"));
    EXPECT_THAT(KeysOf(m_Set), ElementsAre(1, 2, 3));
    copy.DeleteDataBlockInstance(Key(2));
    EXPECT_TRUE(m_Set.HasBlockInstance(Key(2)));
    assigned.StoreDataBlockInstance(Key(9), new FakeBlock(Key(9), &m_Calls, "nine"));
    m_Calls.clear();
    assigned = copy;
    EXPECT_THAT(m_Calls, ElementsAre("nine.~"));
    std::vector<const Descriptor*> before, after;
    assigned.GetAliases(before);
    assigned = static_cast<const FED_DataBlockSet&>(assigned);
    assigned.GetAliases(after);
    EXPECT_EQ(after, before) << "self-assignment moves nothing";
    const Descriptor absent = Key(9);
    EXPECT_FALSE(assigned.HasBlockInstance(absent));
    EXPECT_EQ(CacheOf(absent).missStamp, 4u) << "the store count is copied";
    m_Set.Clear();
    EXPECT_EQ(&copy.GetDataBlockInstance(Key(3)), one);
    EXPECT_EQ(&assigned.GetDataBlockInstance(Key(1)), one);
  }
  std::sort(m_Calls.begin(), m_Calls.end());
  EXPECT_THAT(m_Calls, ElementsAre("four.~", "nine.~", "one.~", "two.~"));
}

}  // namespace
