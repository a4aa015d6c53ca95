// Whole columns, on a block that has a fast way for them and on one that has none.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <numeric>

#include "FED_MemoryDatabase.h"
#include "FakeBlock.h"
#include "LogLines.h"
#include "QeltaFortran_F.h"
#include "QeltaLastFailure.h"
#include "RecordCursor.h"

namespace qelta::test {
namespace {

using Bytes = std::vector<unsigned char>;

// The same format in a memory database and in a fake.
class Blocks {
 public:
  explicit Blocks(const std::string& format) : m_Fake(Key(), format) {
    m_Database.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"columns");
    m_Memory = &m_Database.CreateDataBlock(Key(), 0, 0, format);
  }

  std::array<FED_DataBlock*, 2> All() { return {m_Memory, &m_Fake}; }

 private:
  static FED_DataDescriptor Key() {
    FED_DataDescriptor key;
    key.SetInteger(FED_DataDescriptor::STATE, 1);
    return key;
  }

  FED_MemoryDatabase m_Database;
  FED_DataBlock* m_Memory = nullptr;
  FakeBlock m_Fake;
};

struct Column {
  std::int32_t field, first, count;

  std::int32_t Write(FED_DataBlock& block, const Bytes& values) const {
    std::int32_t status = 77;
    Block_WriteColumn_F(&block, &field, &first, &count, values.data(), &status);
    return status;
  }
  std::int32_t Read(FED_DataBlock& block, Bytes& values) const {
    std::int32_t status = 77;
    Block_ReadColumn_F(&block, &field, &first, &count, values.data(), &status);
    return status;
  }
};

// The bytes of a record; none when it is absent.
Bytes RecordAt(FED_DataBlock& block, std::size_t index) {
  if (!block.HasRecord(index)) return {};
  const RecordWriter cursor(block);
  block.GetRecord(index, *cursor);
  const unsigned char* const bytes = FakeBlock::RecordBuffer(*cursor);
  return {bytes, bytes + block.GetRecordSize()};
}

// An integer in front and a double behind the column, the bytes of one record.
Bytes Record(std::int32_t before, const unsigned char* column, std::size_t size, double behind) {
  Bytes bytes(4 + size + 8);
  std::memcpy(bytes.data(), &before, 4);
  std::memcpy(bytes.data() + 4, column, size);
  std::memcpy(bytes.data() + 4 + size, &behind, 8);
  return bytes;
}

void SetRecord(FED_DataBlock& block, std::size_t index, int before, double behind) {
  const RecordWriter cursor(block);
  cursor->SetInteger(1, before);
  cursor->SetDouble(3, behind);
  block.SetRecord(index, *cursor);
}

TEST(Columns, OfEveryTypeAgreeWithTheRecords) {
  const struct {
    char type;
    std::size_t size;
  } rows[] = {{'I', 4}, {'d', 8}, {'f', 4}, {'V', 24}, {'T', 48}, {'i', 4}, {'t', 8}};
  for (const auto& row : rows) {
    Blocks blocks(std::string("I|i") + row.type + "d");
    for (FED_DataBlock* const block : blocks.All()) {
      SCOPED_TRACE(row.type);
      SetRecord(*block, 4, 11, 2.5);
      Bytes written(3 * row.size);
      std::iota(written.begin(), written.end(), static_cast<unsigned char>(1));
      const Column column{2, 3, 3};
      EXPECT_EQ(column.Write(*block, written), 0);
      EXPECT_EQ(RecordAt(*block, 3), Record(0, written.data(), row.size, 0));
      EXPECT_EQ(RecordAt(*block, 4), Record(11, &written[row.size], row.size, 2.5));
      EXPECT_EQ(RecordAt(*block, 5), Record(0, &written[2 * row.size], row.size, 0));
      EXPECT_TRUE(RecordAt(*block, 2).empty() && RecordAt(*block, 6).empty());
      Bytes read(3 * row.size + 1, 0xEE);
      EXPECT_EQ(column.Read(*block, read), 0);
      EXPECT_EQ(read.back(), 0xEE);
      read.pop_back();
      EXPECT_EQ(read, written);
    }
  }
}

TEST(Columns, FailWhereThereAreNone) {
  const LogLines muted;
  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  const std::string handles = " of block STATE=1 holds strings, lists or sets (format 'I|dSOLD')";
  const std::pair<Column, std::string> rows[] = {
      {{2, 0, 1}, "Field 2" + handles},   {{3, 0, 1}, "Field 3" + handles},
      {{4, 0, 1}, "Field 4" + handles},   {{5, 0, 1}, "Field 5" + handles},
      {{0, 0, 1}, "has no field 0"},      {{6, 0, 1}, "has no field 6"},
      {{-1, 0, 1}, "has no field"},       {{1, 0, -1}, "A column cannot have -1 records"},
      {{1, 0, -kMax - 1}, "-2147483648"}, {{1, -1, 1}, "beyond the highest index"},
      {{1, -1, 2}, "beyond the highest"}, {{1, kMax, 2}, "beyond the highest index"},
  };
  Blocks blocks("I|dSOLD");
  for (FED_DataBlock* const block : blocks.All()) {
    Bytes values(64, 0xEE);
    for (const auto& [column, text] : rows) {
      EXPECT_EQ(column.Read(*block, values), -1) << text;
      EXPECT_THAT(QeltaLastFailure::Text(), testing::HasSubstr(text));
      EXPECT_EQ(column.Write(*block, values), -1) << text;
    }
    EXPECT_EQ((Column{1, 5, 0}.Read(*block, values)), 0) << "no records are no failure";
    EXPECT_EQ((Column{1, 5, 0}.Write(*block, values)), 0);
    EXPECT_EQ(block->GetMaxIndex(), -1) << "nothing was made";
    EXPECT_EQ(values, Bytes(64, 0xEE));
    EXPECT_EQ((Column{1, 0, 2}.Write(*block, values)), 0);
    EXPECT_EQ((Column{1, 0, 3}.Read(*block, values)), -1) << "the last one is absent";
  }
}

TEST(Columns, FieldTypesFillTheRoomThereIs) {
  Blocks blocks("I|dSV");
  for (const std::int32_t room : {-1, 0, 2, 3, 4}) {
    std::array<std::int32_t, 4> types{}, expected{2, 4, 5, 0};
    std::int32_t count = 77, status = 77;
    Block_GetFieldTypes_F(blocks.All()[0], &room, types.data(), &count, &status);
    for (std::int32_t i = 3; i >= std::max(room, 0); --i) expected[static_cast<std::size_t>(i)] = 0;
    EXPECT_EQ(types, expected) << room;
    EXPECT_EQ(count, 3);
    EXPECT_EQ(status, 0);
  }
}

}  // namespace
}  // namespace qelta::test
