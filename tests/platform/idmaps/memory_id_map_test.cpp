#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "EntityModel.h"

namespace {

using qelta::test::EntityModel;

constexpr std::int32_t kLeastId = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kGreatestId = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kGreatestIndex = std::numeric_limits<std::int32_t>::max();

std::string MessageOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const FED_Failure& failure) {
    EXPECT_EQ(failure.GetLocation(), "|%P|QeltaIdMaps|FED_MemoryIdMap");
    EXPECT_EQ(failure.GetMessageId().size(), 12u);
    return failure.GetMessageText();
  }
  return "no failure";
}

std::string NameAt(const FED_IdMap& map, std::int64_t index) {
  std::string name;
  map.NameOfIndex(index, name);
  return name;
}

// What is written first takes the next index.
template <class Key>
bool WriteBoth(FED_MemoryIdMap& map, const EntityModel& model, const Key& key) {
  const bool known = model.IndexOf(key) >= 0;
  const std::int64_t expected = known ? model.IndexOf(key) : model.GetMaxIndex() + 1;
  if constexpr (std::is_same_v<Key, std::string>) {
    EXPECT_EQ(map.IndexOfNameForWrite(key), expected);
  } else {
    EXPECT_EQ(map.IndexOfIdForWrite(key), expected);
  }
  return !known;
}

TEST(MemoryIdMapTest, BehavesLikePlainMaps) {
  std::mt19937 random(5);
  const auto below = [&](int count) {
    return static_cast<int>(random() % static_cast<unsigned>(count));
  };
  for (int round = 0; round < 60; ++round) {
    FED_MemoryIdMap map(ID_TYPE_NODE);
    EntityModel model;
    for (int step = 0; step < 60; ++step) {
      const std::int32_t id = below(41) - 1;
      const std::string name = below(3) == 0 ? "" : std::to_string(below(40));
      const int action = below(8);
      if (action == 0) {
        if (WriteBoth(map, model, id)) model.Add(model.GetMaxIndex() + 1, id);
      } else if (action == 1 && !name.empty()) {
        std::int32_t freeId = 1;
        while (model.IndexOf(freeId) >= 0) ++freeId;
        if (WriteBoth(map, model, name)) model.Add(model.GetMaxIndex() + 1, freeId, name);
      } else {
        model.AddBoth(map, below(41) - 1, id, name);
      }
      model.ExpectSame(map);
    }
  }
}

TEST(MemoryIdMapTest, TakesExtremes) {
  FED_MemoryIdMap map(ID_TYPE_ELEMENT);
  map.Add(0, kLeastId);
  map.Add(1, kGreatestId);
  map.Add(kGreatestIndex, 0, "far");
  EXPECT_EQ(map.IndexOfId(kLeastId), 0);
  EXPECT_EQ(map.IdOfIndex(1), kGreatestId);
  EXPECT_EQ(map.IndexOfName("far"), kGreatestIndex);
  EXPECT_EQ(map.GetMaxIndex(), kGreatestIndex);
  EXPECT_NE(MessageOf([&] { map.IndexOfIdForWrite(5); }), "no failure");
  EXPECT_NE(MessageOf([&] { map.IndexOfNameForWrite("x"); }), "no failure");
  EXPECT_EQ(map.GetCount(), 3u);
}

TEST(MemoryIdMapTest, FailuresNameTypeValueAndWhatIsKnown) {
  FED_MemoryIdMap map(ID_TYPE_ELEMENT_GROUP);
  EXPECT_EQ(MessageOf([&] { map.IndexOfId(7); }),
            "The id map 3 (element group) does not know the id 7; it knows no ids yet. Register "
            "the id before it is used.");
  map.Add(4, -20, "skin");
  map.Add(9, 300);
  const std::int64_t farBeyond4 = (std::int64_t{1} << 40) + 4;
  EXPECT_FALSE(map.ContainsIndex(farBeyond4) || map.HasNameAt(farBeyond4));
  struct Row {
    std::function<void()> action;
    std::vector<std::string> parts;
  };
  const Row rows[] = {
      {[&] { map.IndexOfId(7); }, {"id 7", "2 ids from -20 to 300"}},
      {[&] { map.IdOfIndex(5); }, {"index 5", "2 ids from -20 to 300", "up to 9"}},
      {[&] { map.IdOfIndex(-1); }, {"index -1"}},
      {[&] { map.IdOfIndex(farBeyond4); }, {"index 1099511627780"}},
      {[&] { NameAt(map, farBeyond4); }, {"index 1099511627780"}},
      {[&] { NameAt(map, 5); }, {"index 5"}},
      {[&] { NameAt(map, 9); }, {"no name", "index 9", "id 300"}},
      {[&] { map.IndexOfName("core %s"); }, {"'core %s'", "1 names"}},
      {[&] { map.IndexOfName(""); }, {"''"}},
      {[&] { map.IndexOfNameForWrite(""); }, {"empty name"}},
      {[&] { map.Add(-1, 1); }, {"index -1", "id 1", "from 0 to 2147483647"}},
      {[&] { map.Add(kGreatestIndex + 1, 1); }, {"index 2147483648", "id 1"}},
      {[&] { map.Add(std::numeric_limits<std::int64_t>::max(), 1); }, {"9223372036854775807"}},
      {[&] { map.Add(4, 21); }, {"id 21", "index 4", "id -20"}},
      {[&] { map.Add(5, 300); }, {"id 300", "index 5", "index 9"}},
      {[&] { map.Add(9, -20); }, {"id -20", "index 9", "id 300"}},
      {[&] { map.Add(9, 300, "skin"); }, {"'skin'", "index 9", "index 4"}},
      {[&] { map.Add(4, -20, "hull"); }, {"'hull'", "index 4", "'skin'"}},
      {[&] { map.Add(11, 11, "skin"); }, {"'skin'", "index 11", "index 4"}},
  };
  for (const Row& row : rows) {
    const std::string message = MessageOf(row.action);
    EXPECT_NE(message.find("id map 3 (element group)"), std::string::npos) << message;
    for (const std::string& part : row.parts) {
      EXPECT_NE(message.find(part), std::string::npos) << message << "\nlacks " << part;
    }
    EXPECT_EQ(map.GetCount(), 2u) << message;
    EXPECT_FALSE(map.ContainsId(11) || map.ContainsName("hull") || map.HasNameAt(9)) << message;
  }
}

TEST(MemoryIdMapTest, BulkFormsCountUpFromTheFirstIndex) {
  FED_MemoryIdMap map(ID_TYPE_NODE);
  const std::int32_t ids[] = {10, 30, 20};
  const std::string names[] = {"a", "", "c"};
  map.Add(ids, 3);
  EXPECT_EQ(map.IndexOfId(30), 1);
  map.Add(ids, names, 3);
  EXPECT_EQ(map.IndexOfName("c"), 2);
  EXPECT_FALSE(map.HasNameAt(1));
  const std::int32_t more[] = {-7, -8};
  map.Add(more, 2, 1000);
  EXPECT_EQ(map.IdOfIndex(1001), -8);
  map.Add(ids, nullptr, 3);
  const std::size_t none = 0;
  map.Add(nullptr, none, 5);
  map.Add(more, none, -5);
  EXPECT_EQ(map.GetCount(), 5u);
  map.AddConsecutive(40, 3, 3);
  map.AddConsecutive(41, 3, 4);
  EXPECT_EQ(map.IndexOfId(43), 6);
  EXPECT_EQ(map.GetCount(), 9u);
}

TEST(MemoryIdMapTest, BulkFormsRefuseWhatCannotBe) {
  FED_MemoryIdMap map(ID_TYPE_NODE);
  const std::int32_t ids[] = {1, 2, 1, 4};
  EXPECT_NE(MessageOf([&] { map.Add(ids, 4); }), "no failure");
  EXPECT_EQ(map.GetCount(), 2u) << "what precedes the contradiction stays";
  EXPECT_NE(MessageOf([&] { map.Add(nullptr, 3); }), "no failure");
  EXPECT_NE(MessageOf([&] { map.Add(ids, 3, kGreatestIndex - 1); }), "no failure");
  EXPECT_NE(MessageOf([&] { map.Add(ids, 2, -1); }), "no failure");
  EXPECT_NE(MessageOf([&] { map.Add(ids, ~std::size_t{0}); }), "no failure");
  EXPECT_NE(MessageOf([&] { map.Add(ids, ~std::size_t{0} / 4); }), "no failure");
  EXPECT_NE(MessageOf([&] { map.AddConsecutive(2147483646, 3, 5); }), "no failure");
  EXPECT_NE(MessageOf([&] { map.AddConsecutive(-3, 3, kGreatestIndex - 1); }), "no failure");
  EXPECT_EQ(map.GetCount(), 2u);
  const std::int32_t last[] = {8, 9};
  map.Add(last, 2, kGreatestIndex - 1);
  EXPECT_EQ(map.IdOfIndex(kGreatestIndex), 9);
}

TEST(MemoryIdMapTest, NamesMayHoldAnyBytes) {
  FED_MemoryIdMap map(ID_TYPE_PROPERTY);
  const std::string withZero("a\0b", 3);
  map.Add(0, 1, withZero);
  map.Add(1, 2, "a");
  map.Add(2, 3, std::string(5000, 'x'));
  EXPECT_EQ(map.IndexOfName(withZero), 0);
  EXPECT_EQ(NameAt(map, 0), withZero);
  EXPECT_LE(MessageOf([&] { map.IndexOfName(std::string(5000, 'y')); }).size(), 1023u);
}

// So many that some of them have the same 32-bit hash.
TEST(MemoryIdMapTest, ManyNamesAreKeptApart) {
  FED_MemoryIdMap map(ID_TYPE_ELEMENT_GROUP);
  constexpr std::int64_t kCount = 300000;
  for (std::int64_t i = 0; i < kCount; ++i) {
    ASSERT_EQ(map.IndexOfNameForWrite("part " + std::to_string(i)), i);
  }
  for (std::int64_t i = 0; i < kCount; ++i) {
    ASSERT_EQ(map.IndexOfName("part " + std::to_string(i)), i);
  }
}

}  // namespace
