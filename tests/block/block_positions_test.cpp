#include "BlockPositions.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <string>
#include <utility>

#include "FailingAllocation.h"
#include "RawBytes.h"

namespace {

using namespace qelta::test;
using qelta::BlockPositions;
using Descriptor = FED_DataDescriptor;

Descriptor Numbered(int number) {
  Descriptor key(number % 7, ONF_TEMPERATURE, 1 + number % 5);
  key.SetInteger(Descriptor::INCREMENT, number);
  return key;
}

// Only the fields after the first four differ.
Descriptor Alike(int number) {
  Descriptor key(1, ONF_TEMPERATURE, 2, 3);
  key.SetInteger(Descriptor::STATE, 4);
  key.SetInteger(Descriptor::SUB_LEVEL, number);
  return key;
}

// Any fields, with values around the ends of the numbers that a digest has room for; some masks
// also have bits that stand for no field.
Descriptor Wild(int number) {
  constexpr int low = std::numeric_limits<int>::min(), room = 1 << 27;
  constexpr int values[] = {low, -room - 1, -room, 1 - room, -1,       0,
                            1,   room - 2,  room,  room - 1, room + 1, -(low + 1)};
  std::mt19937 random(static_cast<unsigned>(number));
  const auto draw = [&random](unsigned count) { return static_cast<int>(random() % count); };
  const int fields = draw(3) == 0 ? 1 << draw(14) : draw(2) == 0 ? 0x1f : draw(1 << 14);
  Descriptor key;
  for (std::size_t i = 0; i < Descriptor::FIELD_COUNT; ++i) {
    if ((fields >> i & 1) != 0) key.SetInteger(Descriptor::CastIndex(i), values[draw(12)]);
  }
  if (key.Has(Descriptor::LABEL)) key.SetString(Descriptor::LABEL, std::to_string(draw(20)));
  if (draw(8) == 0) WriteAt(key, kMaskAt, fields | draw(8) << 14);
  return key;
}

class BlockPositionsTest : public testing::TestWithParam<Descriptor (*)(int)> {
 protected:
  struct Stored {
    int position;
    const Descriptor* key;
  };

  static Descriptor Key(int number) { return GetParam()(number); }

  void Set(const Descriptor& key, int position) {
    const Descriptor* const stored = &m_Positions.Set(key, position);
    const auto entry = m_Model.try_emplace(key, Stored{position, stored}).first;
    EXPECT_EQ(entry->second.key, stored);
    entry->second.position = position;
  }

  void ExpectAsModel(const BlockPositions& positions) const {
    ASSERT_EQ(positions.Size(), m_Model.size());
    auto expected = m_Model.begin();
    positions.ForEach([&](const Descriptor& key, int position) {
      EXPECT_TRUE(key.EqualTo(expected->first));
      EXPECT_EQ(&key, expected->second.key);
      EXPECT_EQ(position, expected->second.position);
      EXPECT_EQ(positions.Find(expected->first), position);
      ++expected;
    });
  }

  BlockPositions m_Positions;
  std::map<Descriptor, Stored> m_Model;
};

TEST_P(BlockPositionsTest, AgreesWithAMap) {
  std::mt19937 random(1);
  for (int step = 0; step < 12000; ++step) {
    const Descriptor key = Key(static_cast<int>(random() % 2000));
    const bool isGrowing = step % 3000 < 2000;
    if (random() % 8 < (isGrowing ? 7 : 1)) {
      Set(key, step);
    } else {
      // The lowest keys go as a whole, so that others come in front of what remains.
      const auto entry = isGrowing ? m_Model.find(key) : m_Model.begin();
      m_Positions.Erase(entry == m_Model.end() ? key : *entry->second.key);
      if (entry != m_Model.end()) m_Model.erase(entry);
    }
    EXPECT_EQ(m_Positions.Find(key) < 0, m_Model.count(key) == 0);
    if (step % 1000 == 999) ExpectAsModel(m_Positions);
  }
}

TEST_P(BlockPositionsTest, SetChangesNothingWhenMemoryIsShort) {
  for (int i = 0; i < 1000; ++i) {
    ForEachFailingAllocation([&] { m_Positions.Set(Key(i), i); },
                             [&] { ExpectAsModel(m_Positions); });
    Set(Key(i), i);
  }
  ExpectAsModel(m_Positions);
  const auto replace = [&] {
    for (const auto& [key, stored] : m_Model) m_Positions.Erase(*stored.key);
    EXPECT_EQ(m_Positions.Size(), 0u);
    for (int i = 0; i < 1000; ++i) m_Positions.Set(Key(i), i);
  };
  EXPECT_EQ(ForEachFailingAllocation(replace, [] {}), 0u) << "erased entries leave their memory";
}

TEST_P(BlockPositionsTest, CopiesAreWholeAndMovesKeepTheKeys) {
  for (int i = 999; i >= 0; --i) Set(Key(i), i);
  BlockPositions copy;
  copy.Set(Key(-5), 5);
  ForEachFailingAllocation([&] { copy = m_Positions; }, [&] { EXPECT_EQ(copy.Find(Key(-5)), 5); });
  BlockPositions moved = std::move(m_Positions);
  ExpectAsModel(moved);
  for (auto& [key, stored] : m_Model) stored.key = &copy.Set(key, stored.position);
  ExpectAsModel(copy);
}

INSTANTIATE_TEST_SUITE_P(Keys, BlockPositionsTest, testing::Values(Numbered, Alike, Wild));

}  // namespace
