#include <gmock/gmock.h>

#include <climits>
#include <random>

#include "Damage.h"
#include "Extent.h"
#include "FED_MemoryIdMap.h"
#include "FailureMatcher.h"
#include "IdMapCode.h"
#include "KeyCode.h"

namespace qelta::test {
namespace {

using testing::HasSubstr;
using D = FED_DataDescriptor;

TEST(KeyCode, KeysComeBackAndNothingElseIsAKey) {
  D all;
  for (std::size_t i = 0; i < D::FIELD_COUNT; ++i) all.SetInteger(D::CastIndex(i), INT_MIN);
  all.SetString(D::LABEL, "");
  all.SetString(D::OBJECTIVE_ID, std::string(300, '\xff'));
  D two;
  two.SetString(D::LABEL, "ab");
  two.SetInteger(D::STATE, -2);
  EXPECT_EQ(EncodeKey(two), std::string("\x04\x01\xfe\xff\xff\xff\x02\0\0\0ab", 12));
  D decoded;
  for (const D& key : {D(), two, all}) {
    const std::string bytes = EncodeKey(key);
    EXPECT_TRUE(DecodeKey(bytes, decoded) && decoded.EqualTo(key)) << decoded.ToString();
    EXPECT_FALSE(DecodeKey(bytes + '\0', decoded));
    for (std::size_t i = 0; i < bytes.size(); ++i)
      EXPECT_FALSE(DecodeKey(bytes.substr(0, i), decoded));
  }
  EXPECT_FALSE(DecodeKey(std::string("\0\x40\1\0\0\0", 6), decoded));      // a 15th field
  EXPECT_FALSE(DecodeKey(std::string("\0\x01\3\0\0\0a\0b", 9), decoded));  // a NUL
}

TEST(Extent, ChunksComeBackAndNothingElseIsAListOfChunks) {
  const std::string packed = PackChunks({{Part::HANDLES, 1, {1, 2, 3}}, {Part::ID_MAP, 7, {}}});
  std::vector<StoredChunk> chunks;
  EXPECT_TRUE(UnpackChunks(packed, chunks) && PackChunks(chunks) == packed);
  for (auto& bad : {packed.substr(1), '\6' + packed.substr(1)})
    EXPECT_FALSE(UnpackChunks(bad, chunks));
}

std::string Encoded(const FED_IdMap& map) {
  std::uint64_t entities = 0;
  return EncodeIdMap(map, entities);
}

TEST(IdMapCode, MapsComeBackWhateverTheirGaps) {
  std::mt19937 random(7);
  for (int round = 0; round < 60; ++round) {
    FED_MemoryIdMap map(ID_TYPE_NODE), copy(ID_TYPE_NODE), empty(ID_TYPE_NODE);
    for (std::int32_t i = 0, index = 0; i < 40; ++i, index += random() % 3 == 0 ? 4 : 1) {
      const std::int32_t id = random() % 4 == 0 ? index * -7 - 2 : index * 2 % 30 + index;
      const std::string name = random() % 3 == 0 ? "n" + std::to_string(index) : "";
      if (!map.ContainsId(id)) map.Add(index, id, name);
    }
    if (round % 2 == 0) map.Add(INT_MAX, -1, "far");
    const std::string bytes = Encoded(map);
    MergeIdMap(ID_TYPE_NODE, bytes, copy);
    EXPECT_EQ(copy.GetCount(), map.GetCount());
    for (std::int64_t i = 0; i < 200; ++i) {
      EXPECT_TRUE(!map.ContainsIndex(i) || copy.IdOfIndex(i) == map.IdOfIndex(i));
      EXPECT_TRUE(!map.HasNameAt(i) || copy.IndexOfName("n" + std::to_string(i)) == i);
    }
    MergeIdMap(ID_TYPE_NODE, bytes, copy);
    ASSERT_EQ(Encoded(copy), bytes);
    EXPECT_THROW(MergeIdMap(ID_TYPE_NODE, bytes.substr(0, bytes.size() - 1), empty), Damage);
    ASSERT_EQ(empty.GetCount(), 0u);
  }
}

TEST(IdMapCode, AGivenMapMayHoldMoreBehindTheStoredOneAndNothingElse) {
  using Entity = std::tuple<std::int64_t, std::int32_t, const char*>;
  const Entity a = {0, 10, ""}, b = {1, 11, "b"}, c = {2, 12, ""}, d = {5, 20, ""};
  const std::pair<int, std::vector<Entity>> rows[] = {
      {-1, {a, b, c, d, {6, 21, "x"}}}, {-1, {a, b, c, d, {9, 1, "x"}}}, {0, {{0, 9, ""}, b, c, d}},
      {1, {a, {1, 11, "c"}, c, d}},     {1, {a, {1, 11, ""}, c, d}},     {2, {a, b, d}},
      {3, {a, b, c, {3, 13, ""}, d}},   {4, {a, b, c, {4, 1, ""}, d}},   {5, {a, b, c}},
      {5, {a, b, c, {6, 20, ""}}},      {5, {a, b, c, {5, 20, "d"}}}};
  FED_MemoryIdMap stored(ID_TYPE_PROPERTY);
  for (const auto& [i, id, name] : {a, b, c, d}) stored.Add(i, id, name);
  for (const auto& [place, entities] : rows) {
    FED_MemoryIdMap map(ID_TYPE_PROPERTY);
    for (const auto& [i, id, name] : entities) map.Add(i, id, name);
    const auto merge = [&] { MergeIdMap(ID_TYPE_PROPERTY, Encoded(stored), map); };
    const std::string text = place < 0 ? (merge(), "") : CatchFailure(merge).GetMessageText();
    EXPECT_THAT(text, HasSubstr(place < 0 ? "" : " differs at index " + std::to_string(place)));
  }
}

}  // namespace
}  // namespace qelta::test
