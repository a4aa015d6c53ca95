// Databases, arrays and the last failure for programs in Fortran and C.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <thread>

#include "EntryPointTable.h"
#include "FED_DataBlock_F.h"
#include "FED_DataDescriptor_F.h"
#include "FED_DataRecord_F.h"
#include "FED_Failure.h"
#include "LogLines.h"
#include "QeltaFortran_F.h"
#include "QeltaLastFailure.h"
#include "RawBytes.h"

namespace qelta::test {
namespace {

using Descriptor = FED_DataDescriptor;
using Pattern = FED_DataDescriptorPattern;

template <class T>
T* Mark() {
  static unsigned char place;
  return reinterpret_cast<T*>(&place);
}

class CompanionTest : public testing::Test {
 protected:
  CompanionTest() { Open(&m_Database); }
  ~CompanionTest() override { Database_Close_F(&m_Database, &m_Status); }

  void Open(FED_Database** database, const char* kind = "memory", const char* name = "n",
            std::int32_t mode = 2, std::int64_t cacheSize = 0) {
    m_Status = 77;
    Database_Open_F(kind, name, &mode, &cacheSize, database, &m_Status);
  }

  FED_DataBlock* Fetch(const Descriptor& key, const char* format = "I|d") {
    FED_DataBlock* block = nullptr;
    m_Status = 77;
    Database_FetchBlock_Custom_F(m_Database, &key, format, &block, &m_Status);
    return block;
  }

  bool Has(const Descriptor& key) {
    std::int32_t has = 77;
    Database_HasBlock_F(m_Database, &key, &has, &m_Status);
    EXPECT_TRUE(m_Status == 0 && (has == 0 || has == 1));
    return has != 0;
  }

  int CreateAlias(const Descriptor& existing, const Descriptor& alias) {
    std::int32_t created = 77;
    Database_CreateAlias_F(m_Database, &existing, &alias, &created, &m_Status);
    EXPECT_EQ(m_Status, 0);
    return created;
  }

  LogLines m_Muted;
  FED_Database* m_Database = nullptr;
  std::int32_t m_Status = 77;
};

Descriptor State(int state) {
  Descriptor key;
  key.SetInteger(Descriptor::STATE, state);
  return key;
}

std::string LastId() { return QeltaLastFailure::MessageId(); }

TEST_F(CompanionTest, OpensOnlyWhatItUnderstands) {
  const struct {
    const char* kind;
    const char* name;
    std::int32_t mode;
    const char* id;
    const char* text;
  } rows[] = {
      {"tape", "n", 2, "400000000001", "There is no kind of storage 'tape'; there is memory"},
      {"", "n", 2, "400000000001", "There is no kind of storage ''"},
      {"Memory", "n", 2, "400000000001", "There is no kind of storage 'Memory'"},
      {"memory", "n", -1, "400000000003", "There is no access mode -1; 0 reads only"},
      {"memory", "n", 3, "400000000003", "There is no access mode 3"},
      {"memory", "a\xFF\xFE", 2, "400000000006", "The name 'a\xFF\xFE' of the database is not"},
      {"memory", "\xC3", 2, "400000000006", "The name "},
  };
  for (const auto& row : rows) {
    auto* database = Mark<FED_Database>();
    Open(&database, row.kind, row.name, row.mode);
    EXPECT_EQ(m_Status, -1) << row.name;
    EXPECT_EQ(database, Mark<FED_Database>());
    EXPECT_EQ(LastId(), row.id);
    EXPECT_EQ(std::string(QeltaLastFailure::Text()).find(row.text), 0u);
  }
  for (const char* const name : {"", "K\xC3\xB6ln \xE6\x97\xA5\xF0\x9F\x9A\x97"}) {
    FED_Database* database = nullptr;
    Open(&database, "memory", name, 1, -5);
    EXPECT_EQ(m_Status, 0);
    ASSERT_NE(database, nullptr);
    Database_Save_F(database, &m_Status);
    EXPECT_EQ(m_Status, 0);
    Database_Close_F(&database, &m_Status);
    EXPECT_EQ(database, nullptr);
    m_Status = 77;
    Database_Close_F(&database, &m_Status);
    EXPECT_EQ(m_Status, 0);
  }
}

TEST_F(CompanionTest, SavesOnlyItsOwnKinds) {
  FakeDatabase foreign;
  Database_Save_F(&foreign, &m_Status);
  EXPECT_EQ(m_Status, -1);
  EXPECT_EQ(LastId(), "400000000002");
}

// The key of a block with its cached position, as DataBlock_GetDescriptor_F gives it, whose slot is
// then changed as a Fortran program does.
TEST_F(CompanionTest, LooksUpWhatTheCallersRecordSaysNow) {
  Descriptor first = State(1);
  first.SetInteger(Descriptor::ITERATION, 0);
  FED_DataBlock* const block = Fetch(first);
  Descriptor key;
  DataBlock_GetDescriptor_F(block, &key);
  for (const bool resolved : {false, true}) {
    if (resolved) static_cast<void>(m_Database->HasBlock(key));  // a C++ program remembers
    std::vector<FED_DataBlock*> blocks = {block};
    for (int iteration = 1; iteration < 4; ++iteration) {
      WriteAt(key, 0, 10 * resolved + iteration);
      const Descriptor before = key;
      EXPECT_FALSE(Has(key)) << iteration;
      EXPECT_EQ(CreateAlias(key, first), 0);
      Database_DeleteBlock_F(m_Database, &key, &m_Status);
      blocks.push_back(Fetch(key));
      EXPECT_EQ(m_Status, 0);
      EXPECT_TRUE(Has(key));
      EXPECT_EQ(std::memcmp(&key, &before, sizeof key), 0) << "the record is the caller's";
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      const int iteration = blocks[i]->GetDescriptor().GetInteger(Descriptor::ITERATION);
      EXPECT_EQ(iteration, static_cast<int>(i == 0 ? 0 : i) + (i > 0 && resolved ? 10 : 0));
    }
    WriteAt(key, 0, 0);
    EXPECT_EQ(Fetch(key), block);
  }
}

TEST_F(CompanionTest, FetchesWhatIsThereAndMakesWhatIsNot) {
  Descriptor key;
  key.SetInteger(Descriptor::ONF, 2);
  FED_DataBlock *made = nullptr, *found = nullptr;
  Database_FetchBlock_F(m_Database, &key, &made, &m_Status);
  EXPECT_EQ(m_Status, 0);
  Database_FetchBlock_F(m_Database, &key, &found, &m_Status);
  EXPECT_EQ(found, made);
  const struct {
    Descriptor key;
    const char* format;
  } rows[] = {{State(-1), "I|d"}, {State(1), "I|q"}};
  for (const auto& row : rows) {
    auto* block = Mark<FED_DataBlock>();
    Database_FetchBlock_Custom_F(m_Database, &row.key, row.format, &block, &m_Status);
    EXPECT_EQ(m_Status, -1) << row.format;
    EXPECT_EQ(block, Mark<FED_DataBlock>());
  }
  auto* block = Mark<FED_DataBlock>();
  key.SetInteger(Descriptor::ONF, 9999);
  Database_FetchBlock_F(m_Database, &key, &block, &m_Status);
  EXPECT_EQ(m_Status, -1);
  EXPECT_EQ(block, Mark<FED_DataBlock>());
}

TEST_F(CompanionTest, FindsIntoAListThatIsUsedAgain) {
  for (const int state : {3, 1, 2}) Fetch(State(state));
  EXPECT_EQ(CreateAlias(State(2), State(7)), 1);
  FED_DataDescriptorList list;
  const auto find = [&](const Pattern& pattern) {
    Database_FindBlocks_F(m_Database, &pattern, &list, &m_Status);
    EXPECT_EQ(m_Status, 0);
    std::vector<int> states;
    for (std::size_t i = 0; i < list.GetCount(); ++i) {
      states.push_back(list[i].GetInteger(Descriptor::STATE));
      EXPECT_EQ(CacheOf(list[i]), (Cache{-1, -1, 0})) << "free to be changed";
    }
    return states;
  };
  EXPECT_EQ(find(Pattern()), (std::vector<int>{1, 2, 3, 7}));
  EXPECT_EQ(list.GetCapacity(), 4u);
  const Descriptor* const data = list.GetData();
  EXPECT_EQ(find(Pattern(State(3))), (std::vector<int>{3}));
  EXPECT_EQ(find(Pattern(State(4))), (std::vector<int>{}));
  EXPECT_EQ(list.GetData(), data);
  Pattern unknown;
  unknown.SetMatchCategory(static_cast<FED_OnfCategoryId>(4711));
  find(Pattern(State(3)));
  Descriptor key = Descriptor(static_cast<FED_OnfId>(2));
  FED_DataBlock* block = nullptr;
  Database_FetchBlock_F(m_Database, &key, &block, &m_Status);
  Database_FindBlocks_F(m_Database, &unknown, &list, &m_Status);
  EXPECT_EQ(m_Status, -1);
  EXPECT_EQ(list.GetCount(), 1u) << "a failure leaves the list";
  EXPECT_EQ(list[0].ToString(), "STATE=3");
}

TEST_F(CompanionTest, AliasesAndDeletions) {
  FED_DataBlock* const block = Fetch(State(1));
  Fetch(State(2));
  EXPECT_EQ(CreateAlias(State(1), State(2)), 0);
  EXPECT_EQ(CreateAlias(State(1), State(9)), 1);
  EXPECT_EQ(Fetch(State(9)), block);
  Descriptor key = State(9);
  Database_DeleteBlock_F(m_Database, &key, &m_Status);
  EXPECT_FALSE(Has(State(1)) || Has(State(9)));
  m_Status = 77;
  Database_DeleteBlock_F(m_Database, &key, &m_Status);
  EXPECT_EQ(m_Status, 0) << "nothing to delete is no failure";
  const Pattern everything;
  Database_DeleteBlocks_F(m_Database, &everything, &m_Status);
  EXPECT_EQ(m_Status, 0);
  EXPECT_FALSE(Has(State(2)));
}

template <class Array, class Value>
void CheckArrays(void (*make)(const Value*, const std::int64_t*, Array**, std::int32_t*) noexcept,
                 void (*release)(Array**, std::int32_t*) noexcept) {
  const LogLines muted;
  const Value values[] = {3, 1, 2};
  std::int32_t status = 77;
  for (const std::int64_t count : {3, 0, -1}) {
    Array* array = nullptr;
    make(values, &count, &array, &status);
    EXPECT_EQ(status, 0);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->count, count > 0 ? 3u : 0u);
    EXPECT_TRUE(count <= 0 || std::equal(values, values + 3, array->data));
    for (int twice = 0; twice < 2; ++twice) {
      status = 77;
      release(&array, &status);
      EXPECT_EQ(array, nullptr);
      EXPECT_EQ(status, 0);
    }
  }
  auto* array = Mark<Array>();
  const std::int64_t absurd = std::int64_t{1} << 62;
  make(values, &absurd, &array, &status);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(array, Mark<Array>());
}

TEST_F(CompanionTest, MakesAndReleasesArrays) {
  CheckArrays<FED_IntArray, std::int32_t>(&IntArray_New_F, &IntArray_Delete_F);
  CheckArrays<FED_DoubleArray, double>(&DoubleArray_New_F, &DoubleArray_Delete_F);
}

TEST_F(CompanionTest, TellsLengthsBeforeTextsAreFetched) {
  FED_DataBlock* const block = Fetch(State(1), "I|S");
  FED_DataRecord* record = nullptr;
  DataBlock_CreateRecord_F(block, &record, &m_Status);
  const std::int32_t field = 1, label = Descriptor::LABEL;
  std::int32_t length = 77;
  Record_GetStringLen_F(record, &field, &length, &m_Status);
  EXPECT_EQ(length, 0);
  DataRecord_SetString_F(record, &field, " f\xC3\xBCnf ", &m_Status);
  Record_GetStringLen_F(record, &field, &length, &m_Status);
  EXPECT_EQ(length, 7);
  DataBlock_DeleteRecord_F(block, &record, &m_Status);
  Descriptor key = State(1);
  Descriptor_GetStringLen_F(&key, &label, &length, &m_Status);
  EXPECT_EQ(m_Status, -1);
  EXPECT_EQ(length, 7) << "untouched";
  EXPECT_EQ(LastId(), "152601091111");
  key.SetString(Descriptor::LABEL, "four");
  Descriptor_GetStringLen_F(&key, &label, &length, &m_Status);
  EXPECT_EQ(m_Status, 0);
  EXPECT_EQ(length, 4);
}

TEST_F(CompanionTest, GivesTheLastErrorInTheRoomThereIs) {
  const FailingProbes failing(
      [] { FED_Failure::Throw("123456789012", "here", "%s", std::string(2000, 'x').c_str()); });
  Arguments arguments;
  DataBlock_GetMaxIndex_F(&arguments.block, &arguments.number, &m_Status);
  for (const auto& [textLength, idLength] : {std::pair{1030, 14}, {5, 3}, {0, -1}}) {
    std::string text(1040, '#'), id(20, '#');
    LastError_Text_F(text.data(), &textLength, id.data(), &idLength);
    const auto expect = [](const std::string& found, std::string whole, int length) {
      whole.resize(static_cast<std::size_t>(std::max(length, 0)), ' ');
      EXPECT_EQ(found, whole + std::string(found.size() - whole.size(), '#'));
    };
    expect(text, std::string(1023, 'x'), textLength);
    expect(id, "123456789012", idLength);
  }
}

}  // namespace
}  // namespace qelta::test
