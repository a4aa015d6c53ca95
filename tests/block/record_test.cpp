#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "FailingAllocation.h"
#include "FailureMatcher.h"
#include "FakeBlock.h"
#include "RecordCursor.h"

namespace {

using namespace qelta::test;
using testing::ElementsAre;
using Bytes = std::vector<unsigned char>;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

class CustomBlock : public FakeBlock {
 public:
  explicit CustomBlock(const std::string& format) : FakeBlock(FED_DataDescriptor(), format) {}
};

using Writer = qelta::RecordWriter;
using Reader = qelta::RecordReader;

// A cursor of any layout, whatever the formats allow.
class AnyRecord : public FED_ConstDataRecord {
 public:
  AnyRecord(const FED_DataBlock& block, std::uint64_t size, const Ints& types)
      : FED_ConstDataRecord(block, size, Convert(types)) {}

 private:
  static std::vector<BlockDataType> Convert(const Ints& types) {
    std::vector<BlockDataType> converted;
    for (const int type : types) converted.push_back(static_cast<BlockDataType>(type));
    return converted;
  }
};

// The list of a field; every way to read it has to agree.
Ints IntsOf(const FED_ConstDataRecord& record, std::size_t i) {
  FED_IntArray array;
  record.GetIntList(i, array);
  Ints list(record.GetIntListLen(i), -99);
  EXPECT_EQ(record.GetIntList(i, list.data()), list.size());
  EXPECT_EQ(Ints(array.data, array.data + array.count), list);
  std::vector<QeltaIdx> indices(3, QeltaIdx(5));
  record.GetIndexList(i, indices);
  Ints indexed;
  for (const QeltaIdx index : indices) indexed.push_back(index.value());
  EXPECT_EQ(indexed, list);
  return list;
}

Doubles DoublesOf(const FED_ConstDataRecord& record, std::size_t i) {
  FED_DoubleArray array;
  record.GetDoubleList(i, array);
  Doubles list(record.GetDoubleListLen(i));
  EXPECT_EQ(record.GetDoubleList(i, list.data()), list.size());
  EXPECT_EQ(Doubles(array.data, array.data + array.count), list);
  return list;
}

TEST(RecordLayout, FieldsFollowOneAnotherWithoutPadding) {
  CustomBlock block("I|IdVTS");
  const Writer cursor(block);
  ASSERT_EQ(cursor->Size(), 5u);
  const unsigned char* const bytes = FakeBlock::RecordBuffer(*cursor);
  EXPECT_EQ(Bytes(bytes, bytes + 88), Bytes(88, 0));
  const std::size_t offsets[] = {0, 4, 12, 36, 84, 88};
  const int types[] = {1, 2, 5, 6, 4};
  for (std::size_t i = 1; i <= 5; ++i) {
    cursor->SetInteger(i, static_cast<int>(i));
    int value = 0;
    std::memcpy(&value, bytes + offsets[i - 1], sizeof value);
    EXPECT_EQ(value, static_cast<int>(i));
    EXPECT_EQ(cursor->GetDataTypeSize(i), offsets[i] - offsets[i - 1]);
    EXPECT_EQ(cursor->GetDataType(i), types[i - 1]);
  }
  const std::size_t sizes[] = {4, 8, 4, 4, 24, 48, 4, 4, 4, 4, 8};
  for (int type = 1; type <= 11; ++type) {
    EXPECT_EQ(AnyRecord(block, 60, {3, type, 2}).GetDataTypeSize(2), sizes[type - 1]) << type;
  }
}

TEST(RecordCounter, FollowsMakingAndGivingBack) {
  CustomBlock block("I|IdVTS");
  const std::uint64_t before = FED_ConstDataRecord::s_InstanceCounter;
  const auto expectCount = [&](std::uint64_t count) {
    EXPECT_EQ(FED_ConstDataRecord::s_InstanceCounter - before, count);
  };
  {
    const Writer writable(block);
    const Reader readOnly(block);
    expectCount(2);
  }
  expectCount(0);
  const auto check = [&] { expectCount(0); };
  EXPECT_GT(ForEachFailingAllocation([&] { Writer cursor(block); }, check), 0u);
  EXPECT_GT(ForEachFailingAllocation([&] { Reader cursor(block); }, check), 0u);
  for (const int type : {0, 12, -1, kMax}) {
    ExpectFailure(
        [&] {
          AnyRecord(block, 16, {2, type, 2});
        },
        "114313130712", "|%P|QeltaDataBlock|FED_ConstDataRecord",
        "Unknown data type " + std::to_string(type) + " encountered in data record");
    expectCount(0);
  }
}

TEST(RecordCounter, ReferenceToNoObjectIsIgnored) {
#if defined(__has_feature)
#if __has_feature(undefined_behavior_sanitizer)
  GTEST_SKIP() << "the sanitizer stops at the reference already";
#endif
#endif
  const CustomBlock block("I|d");
  const std::uint64_t before = FED_ConstDataRecord::s_InstanceCounter;
  FED_ConstDataRecord* volatile none = nullptr;
  static_cast<const FED_DataBlock&>(block).DeleteDataRecord(*none);
  EXPECT_EQ(FED_ConstDataRecord::s_InstanceCounter, before);
}

TEST(RecordFields, HandlesKeepTheirLow32BitsAndTheirSign) {
  class FarHandles : public CustomBlock {
   public:
    using CustomBlock::CustomBlock;
    std::uint64_t SetString(const std::string&) override { return 0xABCD00000007u; }
    void GetString(std::uint64_t handle, std::string& out) const override {
      out = std::to_string(handle);
    }
  };
  FarHandles block("I|S");
  const Writer cursor(block);
  cursor->SetString(1, "any");
  EXPECT_EQ(cursor->GetInteger(1), 7);
  cursor->SetInteger(1, -2);
  EXPECT_EQ(cursor->GetString(1), "18446744073709551614");
}

TEST(RecordFields, ListsKeepOrderAndSetsDoNot) {
  Ints many;
  for (int i = 0; i < 1000; ++i) many.push_back((i * 7919) % 641 - 300);
  const Ints lists[] = {
      {}, {5, 3, 3, 4, 9}, {0}, {kMax, kMin, 0, kMax - 1, kMin + 1, -1}, {kMax, kMax}, many};
  CustomBlock block("I|OLi");
  const Writer cursor(block);
  for (const Ints& list : lists) {
    const std::set<int> sorted(list.begin(), list.end());
    const Ints members(sorted.begin(), sorted.end());
    FED_IntSetIntvl<int> set;
    for (const int member : members) set.Insert(member);
    for (const std::size_t i : {1u, 2u, 3u}) {  // whatever is no integer list is a set
      cursor->SetIntList(i, list);
      EXPECT_EQ(IntsOf(*cursor, i), i == 2 ? list : members);
      EXPECT_EQ(cursor->GetIntSet(i), set);
      cursor->SetIntList(i, FED_IntArray());
      EXPECT_TRUE(IntsOf(*cursor, i).empty());
      cursor->SetIntList(i, FED_IntArray(list));
      EXPECT_EQ(IntsOf(*cursor, i), i == 2 ? list : members);
      cursor->SetIntSet(i, set);
      EXPECT_EQ(IntsOf(*cursor, i), members);
    }
  }
}

TEST(RecordCopy, BulkItemTouchesItsFieldAlone) {
  CustomBlock block("I|fVTSd");
  const Writer source(block), target(block);
  const std::ptrdiff_t offsets[] = {0, 4, 28, 76, 80, 88};
  unsigned char* const bytes = FakeBlock::RecordBuffer(*target);
  std::memset(FakeBlock::RecordBuffer(*source), 0x11, 88);
  for (std::size_t i = 1; i <= 5; ++i) {
    std::memset(bytes, 0xAB, 88);
    target->CopyBulkItemFrom(*source, i);
    Bytes expected(88, 0xAB);
    std::fill(expected.begin() + offsets[i - 1], expected.begin() + offsets[i], 0x11);
    EXPECT_EQ(Bytes(bytes, bytes + 88), expected) << i;
  }
}

// A format with every type of field, most of them unaligned.
constexpr char kEverything[] = "I|IdfSVTOLDit";
const std::string kText("zero \0 inside, \xFF", 16);

void FillEverything(FED_DataRecord& record) {
  const double values[] = {1.5, 2.5, 3.5, 4.5, 5.5, -1e-310};
  record.SetInteger(1, kMin);
  record.SetDouble(2, 1e300);
  record.SetFloat(3, 3.25f);
  record.SetString(4, kText);
  record.SetVector(5, values);
  record.SetTensor(6, values);
  record.SetIntList(7, Ints{9, 8, 8, 1});
  record.SetIntList(8, Ints{9, 8, 8, 1});
  record.SetDoubleList(9, FED_DoubleArray(Doubles{0.5, 0.25}));
  record.SetInteger(10, kMax);
  record.SetDouble(11, std::numeric_limits<double>::infinity());
}

void ExpectEverything(const FED_ConstDataRecord& record) {
  double out[6];
  EXPECT_EQ(record.GetInteger(1), kMin);
  EXPECT_EQ(record.GetDouble(2), 1e300);
  EXPECT_EQ(record.GetFloat(3), 3.25f);
  EXPECT_EQ(record.GetString(4), kText);
  record.GetVector(5, out);
  EXPECT_EQ(Doubles(out, out + 3), (Doubles{1.5, 2.5, 3.5}));
  EXPECT_EQ(record.GetVector(5)[2], 3.5);
  record.GetTensor(6, out);
  EXPECT_THAT(out, ElementsAre(1.5, 2.5, 3.5, 4.5, 5.5, -1e-310));
  EXPECT_THAT(IntsOf(record, 7), ElementsAre(1, 8, 9));
  EXPECT_THAT(IntsOf(record, 8), ElementsAre(9, 8, 8, 1));
  EXPECT_THAT(DoublesOf(record, 9), ElementsAre(0.5, 0.25));
  EXPECT_EQ(record.GetInteger(10), kMax);
  EXPECT_EQ(record.GetDouble(11), std::numeric_limits<double>::infinity());
}

TEST(RecordCopy, AssignmentMovesContentBetweenBlocks) {
  CustomBlock target(kEverything);
  // Other content under low handles, so that a handle copied as a number shows.
  target.SetString("other");
  target.SetIntList(Ints(3).data(), 3);
  target.SetDoubleList(Doubles(1).data(), 1);
  const Writer first(target), second(target);
  {
    CustomBlock source(kEverything);
    const Writer filled(source);
    FillEverything(*filled);
    *first = *filled;
    source.SetRecord(3, *filled);
    const Reader readOnly(source);
    source.GetRecord(3, *readOnly);
    EXPECT_EQ(&(*second = *readOnly), &*second);
    ExpectEverything(*readOnly);
  }
  ExpectEverything(*first);
  ExpectEverything(*second);
  *first = static_cast<const FED_DataRecord&>(*first);
  ExpectEverything(*first);
}

TEST(RecordCopy, TypeOfTheTargetDecidesBetweenListAndSet) {
  CustomBlock lists("I|L"), sets("I|O");
  const Writer list(lists), set(sets);
  list->SetIntList(1, Ints{3, 1, 3, 2});
  *set = *list;
  EXPECT_THAT(IntsOf(*set, 1), ElementsAre(1, 2, 3));
  EXPECT_EQ(sets.GetIntListLen(static_cast<std::uint64_t>(set->GetInteger(1))), 3u);
  *list = *set;
  EXPECT_THAT(IntsOf(*list, 1), ElementsAre(1, 2, 3));
}

TEST(RecordCopy, OtherFieldCountsChangeNothing) {
  CustomBlock three("I|III"), two("I|II"), none("I");
  const Writer source(three), target(two), empty(none);
  for (std::size_t i = 1; i <= 3; ++i) source->SetInteger(i, 5);
  *target = *source;
  *target = *empty;
  *empty = *source;
  *empty = *Writer(none);
  EXPECT_TRUE(*target == *Writer(two));
  EXPECT_EQ(empty->Size(), 0u);
}

TEST(RecordEquality, LayoutAndBytes) {
  CustomBlock block("I|dS"), other("I|dS"), typed("I|tS");
  const Writer a(block), b(block), c(other);
  EXPECT_TRUE(*a == *b);
  EXPECT_TRUE(*a == *c);
  EXPECT_FALSE(*a == *Writer(typed));
  a->SetDouble(1, -0.0);
  EXPECT_FALSE(*a == *b) << "bytes compare, not values";
  b->SetDouble(1, -0.0);
  EXPECT_TRUE(*a == *b);
  a->SetString(2, "same");
  b->SetString(2, "same");
  EXPECT_TRUE(*a != *b) << "handles compare as numbers";
  EXPECT_TRUE(AnyRecord(block, 16, {2, 4}) == AnyRecord(other, 16, {2, 4}));
  EXPECT_FALSE(AnyRecord(block, 16, {2, 4}) == AnyRecord(block, 24, {2, 4}));
  EXPECT_FALSE(AnyRecord(block, 16, {2, 4}) == AnyRecord(block, 16, {2, 4, 4}));
}

}  // namespace
