// What passes through the entry points of blocks and records.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "EntryPointTable.h"
#include "FED_DataBlock_F.h"
#include "FED_DataRecord_F.h"
#include "RawBytes.h"

namespace qelta::test {
namespace {

constexpr std::int32_t kListField = 2, kDoublesField = 3, kTextField = 5;

TEST(BlockEntryPoints, GiveTheDescriptorByteByByte) {
  FED_DataDescriptor key;
  key.SetInteger(FED_DataDescriptor::STATE, 4);
  key.SetInteger(FED_DataDescriptor::ITERATION, 5);
  key.Unset(FED_DataDescriptor::ITERATION);
  WriteCache(key, {17, 18, (std::uint64_t{1} << 40) + 19});
  ProbeBlock block(key);
  FED_DataDescriptor copy;
  DataBlock_GetDescriptor_F(&block, &copy);
  EXPECT_EQ(std::memcmp(&copy, &block.GetDescriptor(), sizeof copy), 0);
  EXPECT_EQ(SlotOf(copy, FED_DataDescriptor::ITERATION), 5) << "leftovers are bytes too";
  EXPECT_EQ(CacheOf(copy), (Cache{17, 18, (std::uint64_t{1} << 40) + 19}));
}

TEST(BlockEntryPoints, CutTheHighestIndexTo32Bits) {
  const struct {
    std::int64_t maxIndex;
    std::int32_t expected;
  } rows[] = {{-1, -1},
              {0, 0},
              {std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::max()},
              {(std::int64_t{1} << 32) + 5, 5},
              {0xFFFFFFFF, -1},
              {std::int64_t{1} << 31, std::numeric_limits<std::int32_t>::min()}};
  ProbeBlock block;
  for (const auto& row : rows) {
    block.maxIndex = row.maxIndex;
    std::int32_t maxIndex = 77, status = 77;
    DataBlock_GetMaxIndex_F(&block, &maxIndex, &status);
    EXPECT_EQ(maxIndex, row.expected) << row.maxIndex;
    EXPECT_EQ(status, 0);
  }
}

TEST(BlockEntryPoints, DeleteOnlyWhatTheHandleHolds) {
  FakeBlock block({}, "I|i");
  const std::uint64_t before = FED_ConstDataRecord::s_InstanceCounter;
  std::int32_t status = 77;
  FED_DataRecord* record = nullptr;
  DataBlock_DeleteRecord_F(&block, &record, &status);
  EXPECT_EQ(status, 0);
  DataBlock_CreateRecord_F(&block, &record, &status);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(FED_ConstDataRecord::s_InstanceCounter, before + 1);
  FED_DataRecord* const made = record;
  status = 77;
  DataBlock_DeleteRecord_F(&block, &record, &status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(record, made) << "the variable is the caller's";
  EXPECT_EQ(FED_ConstDataRecord::s_InstanceCounter, before);
}

TEST(RecordEntryPoints, CutLengthsTo32Bits) {
  Arguments arguments;
  const std::uint64_t big = std::uint64_t{1} << 32;
  for (const std::uint64_t length : {std::uint64_t{0}, big + 3, big - 1}) {
    arguments.block.length = length;
    const auto expected = static_cast<std::int32_t>(length);
    std::int32_t found = 77, status = 77, buffer = 0;
    double doubleBuffer = 0;
    DataRecord_GetIntListLen_F(arguments.record, kListField, &found, &status);
    EXPECT_EQ(found, expected);
    DataRecord_GetIntListNative_F(arguments.record, kListField, &buffer, &found, &status);
    EXPECT_EQ(found, expected);
    DataRecord_GetDoubleListLen_F(arguments.record, kDoublesField, &found, &status);
    EXPECT_EQ(found, expected);
    DataRecord_GetDoubleListNative_F(arguments.record, kDoublesField, &doubleBuffer, &found,
                                     &status);
    EXPECT_EQ(found, expected);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(buffer, 4);
    EXPECT_EQ(doubleBuffer, 4.5);
  }
}

// A cursor of a block that keeps what it is given.
class RecordEntryPointsWithContents : public testing::Test {
 protected:
  RecordEntryPointsWithContents() { DataBlock_CreateRecord_F(&m_Block, &m_Record, &m_Status); }
  ~RecordEntryPointsWithContents() override {
    DataBlock_DeleteRecord_F(&m_Block, &m_Record, &m_Status);
  }

  FakeBlock m_Block{{}, "I|TLDOS"};
  FED_DataRecord* m_Record = nullptr;
  std::int32_t m_Status = 77;
};

TEST_F(RecordEntryPointsWithContents, FitTextsToTheBuffer) {
  const struct {
    const char* text;
    std::int32_t length;
    const char* expected;
  } rows[] = {
      {"abcdef", 8, "abcdef  ##"},
      {"abcdef", 4, "abcd######"},
      {"abcdef", std::numeric_limits<std::int32_t>::min(), "##########"},
      {"  a\xC3\xA9 \t", 10, "  a\xC3\xA9 \t   "},
  };
  for (const auto& row : rows) {
    DataRecord_SetString_F(m_Record, &kTextField, row.text, &m_Status);
    EXPECT_EQ(m_Status, 0);
    char buffer[] = "##########";
    m_Status = 77;
    DataRecord_GetString_F(m_Record, &kTextField, buffer, &row.length, &m_Status);
    EXPECT_STREQ(buffer, row.expected);
    EXPECT_EQ(m_Status, 0) << "a cut text is no failure";
  }
}

TEST_F(RecordEntryPointsWithContents, TakeArraysAndGiveThem) {
  for (const std::size_t count : {0u, 2u}) {
    FED_IntArray ints(std::vector<int>(count, 7));
    FED_DoubleArray doubles(std::vector<double>(count, 2.5));
    FED_IntArray* list = nullptr;
    FED_DoubleArray* doubleList = nullptr;
    DataRecord_SetIntList_F(m_Record, &kListField, &ints, &m_Status);
    DataRecord_GetIntList_F(m_Record, &kListField, &list, &m_Status);
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(std::equal(list->data, list->data + list->count, ints.data, ints.data + count));
    DataRecord_SetDoubleList_F(m_Record, &kDoublesField, &doubles, &m_Status);
    DataRecord_GetDoubleList_F(m_Record, &kDoublesField, &doubleList, &m_Status);
    ASSERT_NE(doubleList, nullptr);
    EXPECT_TRUE(std::equal(doubleList->data, doubleList->data + doubleList->count, doubles.data,
                           doubles.data + count));
    delete list;
    delete doubleList;
    EXPECT_EQ(m_Status, 0);
  }
}

}  // namespace
}  // namespace qelta::test
