// Fields of id records: what is translated, by which operation of which map; and their cursors.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "FED_IdDataBlock.h"
#include "FailingAllocation.h"
#include "FailureMatcher.h"
#include "IdFakes.h"
#include "RecordCursor.h"

namespace {

using namespace qelta::test;
using View = FED_IdDataBlock;
using ConstView = FED_ConstIdDataBlock;
using IdReader = qelta::ScopedCursor<const ConstView, FED_ConstIdDataRecord>;
using IdWriter = qelta::ScopedCursor<View, FED_IdDataRecord>;
using Ints = std::vector<int>;
using Record = FED_IdDataRecord;

constexpr const char* kFormat = "I|IiSLODdVT";
enum Field : std::size_t { INT = 1, INDEX, TEXT, LIST, SET, DOUBLES, DOUBLE, VECTOR, TENSOR };
constexpr int kNoMap = 15;

class FieldBlock : public FakeBlock {
 public:
  explicit FieldBlock(Calls* calls) : FakeBlock({}, kFormat, calls, "b") {}

  void DeleteDataRecord(FED_ConstDataRecord& record) const override {
    ++handedBack;
    FakeBlock::DeleteDataRecord(record);
  }
  mutable int handedBack = 0;
};

// Records without a map of their own; field i has id type i, or 15.
class FieldTest : public testing::Test {
 protected:
  FieldTest() { SetRecordingMaps(m_Pool, "", 100, m_Calls); }

  void Translate(bool translated, bool registers) {
    m_Kind.Set(0, kNoMap, false);
    for (std::size_t i = 1; i <= TENSOR; ++i) {
      m_Kind.Set(i, translated ? static_cast<int>(i) : kNoMap, registers);
    }
  }
  std::string TakeJournal() {
    const std::string journal = Journal(m_Calls);
    m_Calls.clear();
    return journal;
  }

  Calls m_Calls;
  FED_IdMapsPool m_Pool;
  ChangedKind m_Kind{kFormat};
};

template <class AnyRecord>
Ints ListOf(const AnyRecord& record, std::size_t field) {
  FED_IntArray list(Ints{7, 7, 7, 7, 7, 7});
  record.GetIntList(field, list);
  return Ints(list.data, list.data + list.count);
}

TEST_F(FieldTest, ReadingTranslatesByTheTypeOfTheField) {
  const struct {
    bool translated;
    int integer, index;
    std::string text;
    Ints list, set;
    std::string asked;
  } rows[] = {
      {true,
       1104,
       2107,
       "n5",
       {4102, 4109, 4102},
       {5101, 5103},
       "1.IdOfIndex 4, 2.IdOfIndex 7, 3.NameOfIndex 5, b.GetIntList 1, 4.IdOfIndex 2, "
       "4.IdOfIndex 9, 4.IdOfIndex 2, b.GetIntList 2, 5.IdOfIndex 1, 5.IdOfIndex 3"},
      {false, 4, 7, "a text", {2, 9, 2}, {1, 3}, "b.GetString 1, b.GetIntList 1, b.GetIntList 2"},
  };
  for (const auto& row : rows) {
    Translate(row.translated, true);
    FieldBlock block(&m_Calls);
    const qelta::RecordWriter stored(block);
    stored->SetInteger(INT, 4);
    stored->SetInteger(INDEX, 7);
    row.translated ? stored->SetInteger(TEXT, 5) : stored->SetString(TEXT, "a text");
    stored->SetIntList(LIST, Ints{2, 9, 2});
    stored->SetIntList(SET, Ints{3, 1, 3});
    block.SetRecord(0, *stored);

    const ConstView view(block, m_Pool);
    const IdReader reader(view);
    view.GetRecord(0, *reader);
    m_Calls.clear();
    EXPECT_EQ(reader->GetInteger(INT), row.integer);
    EXPECT_EQ(reader->GetInteger(INDEX), row.index);
    EXPECT_EQ(reader->GetString(TEXT), row.text);
    EXPECT_EQ(ListOf(*reader, LIST), row.list);
    EXPECT_EQ(ListOf(*reader, SET), row.set);
    EXPECT_EQ(TakeJournal(), row.asked);

    int integer = 0;
    std::string text = "former text";
    reader->GetInteger(INT, integer);
    reader->GetString(TEXT, text);
    EXPECT_EQ(integer, row.integer);
    EXPECT_EQ(text, row.text);
  }
}

TEST_F(FieldTest, WritingTranslatesByTypeAndFlag) {
  constexpr bool plain = false, translated = true, registering = true, looking = false;
  const std::function<void(Record&)> integer = [](Record& r) { r.SetInteger(INT, 1104); };
  const std::function<void(Record&)> text = [](Record& r) { r.SetString(TEXT, "n6"); };
  const std::function<void(Record&)> list = [](Record& r) {
    r.SetIntList(LIST, FED_IntArray(Ints{4109, 4102, 4109}));
  };
  const std::function<void(Record&)> vector = [](Record& r) {
    r.SetIntList(LIST, Ints{4109, 4102, 4109});
  };
  const std::function<void(Record&)> set = [](Record& r) { r.SetIntList(SET, Ints{5109, 5102}); };
  const std::function<void(Record&)> empty = [](Record& r) { r.SetIntList(LIST, Ints{}); };
  const std::function<void(Record&)> names = [](Record& r) {
    r.SetStringList(LIST, {"n9", "n2", "n9"});
  };
  const struct {
    std::function<void(Record&)> write;
    std::size_t field;
    bool isTranslated, registers;
    Ints stored;
    std::string asked;
  } rows[] = {
      {integer, INT, translated, registering, {54}, "1.IndexOfIdForWrite 1104"},
      {integer, INT, translated, looking, {4}, "1.IndexOfId 1104"},
      {integer, INT, plain, registering, {1104}, ""},
      {text, TEXT, translated, registering, {56}, "3.IndexOfNameForWrite n6"},
      {text, TEXT, translated, looking, {6}, "3.IndexOfName n6"},
      {text, TEXT, plain, registering, {1}, ""},
      {list,
       LIST,
       translated,
       registering,
       {59, 52, 59},
       "4.IndexOfIdForWrite 4109, 4.IndexOfIdForWrite 4102, 4.IndexOfIdForWrite 4109, "
       "b.SetIntList 3"},
      {vector,
       LIST,
       translated,
       looking,
       {9, 2, 9},
       "4.IndexOfId 4109, 4.IndexOfId 4102, 4.IndexOfId 4109, b.SetIntList 3"},
      {vector, LIST, plain, registering, {4109, 4102, 4109}, "b.SetIntList 3"},
      {empty, LIST, translated, registering, {}, "b.SetIntList 0"},
      {set,
       SET,
       translated,
       registering,
       {52, 59},
       "5.IndexOfIdForWrite 5109, 5.IndexOfIdForWrite 5102, b.SetIntList 2"},
      // Always by name, and never registering.
      {names,
       LIST,
       translated,
       registering,
       {9, 2, 9},
       "4.IndexOfName n9, 4.IndexOfName n2, 4.IndexOfName n9, b.SetIntList 3"},
      {names,
       LIST,
       plain,
       registering,
       {9, 2, 9},
       "15.IndexOfName n9, 15.IndexOfName n2, 15.IndexOfName n9, b.SetIntList 3"},
      {[](Record& r) { r.SetStringList(SET, {}); }, SET, plain, looking, {}, "b.SetIntList 0"},
  };
  for (const auto& row : rows) {
    Translate(row.isTranslated, row.registers);
    FieldBlock block(&m_Calls);
    View view(block, m_Pool, false);
    const IdWriter writer(view);
    m_Calls.clear();
    row.write(*writer);
    EXPECT_EQ(TakeJournal(), row.asked);
    view.SetRecord(0, *writer);
    const qelta::RecordReader stored(block);
    block.GetRecord(0, *stored);
    const bool isList = row.field == LIST || row.field == SET;
    EXPECT_EQ(isList ? ListOf(*stored, row.field) : Ints{stored->GetInteger(row.field)}, row.stored)
        << row.asked;
  }
}

TEST_F(FieldTest, ValuesAreNeverTranslated) {
  Translate(true, true);
  FieldBlock block(&m_Calls);
  View view(block, m_Pool, false);
  const IdWriter writer(view);
  const double values[] = {1, 2, 3, 4, 5, 6};
  double out[6] = {}, *const end = out + 6;
  writer->SetDouble(DOUBLE, 2.5);
  writer->SetVector(VECTOR, values);
  writer->SetTensor(TENSOR, values);
  writer->GetDouble(DOUBLE, *out);
  EXPECT_EQ(*out, 2.5);
  writer->GetVector(VECTOR, out);
  EXPECT_TRUE(std::equal(out, out + 3, values));
  writer->GetTensor(TENSOR, out);
  EXPECT_TRUE(std::equal(out, end, values));
  FED_DoubleArray list;
  writer->SetDoubleList(DOUBLES, std::vector<double>(values, values + 6));
  writer->GetDoubleList(DOUBLES, list);
  EXPECT_TRUE(std::equal(list.data, list.data + list.count, values, values + 6));
  writer->SetDoubleList(DOUBLES, FED_DoubleArray());
  writer->GetDoubleList(DOUBLES, list);
  EXPECT_EQ(list.count, 0u);
  EXPECT_EQ(TakeJournal(), "");
}

TEST_F(FieldTest, FailuresLeaveTheFieldAsItWas) {
  Translate(true, false);
  FieldBlock block(&m_Calls);
  View view(block, m_Pool, false);
  const IdWriter writer(view);
  writer->SetInteger(INT, 1104);
  writer->SetString(TEXT, "n3");
  writer->SetIntList(LIST, Ints{4101});
  EXPECT_EQ(FailureId([&] { writer->SetInteger(INT, 99); }), "900000000001");
  EXPECT_EQ(FailureId([&] { writer->SetString(TEXT, "?"); }), "900000000001");
  EXPECT_EQ(FailureId([&] { writer->SetIntList(LIST, Ints{4102, 99, 4103}); }), "900000000001");
  EXPECT_EQ(FailureId([&] { writer->SetStringList(LIST, {"n1", "?"}); }), "900000000001");
  EXPECT_EQ(writer->GetInteger(INT), 1104);
  EXPECT_EQ(writer->GetString(TEXT), "n3");
  EXPECT_EQ(ListOf(*writer, LIST), Ints{4101});
}

class CursorTest : public FieldTest {
 protected:
  CursorTest() { Translate(true, false); }
  ~CursorTest() override { ExpectNoCursor(); }

  void ExpectNoCursor() const { EXPECT_EQ(FED_ConstDataRecord::s_InstanceCounter, m_Cursors); }

  FieldBlock m_Block{nullptr};  // notes nothing and so allocates nothing for that
  View m_View{m_Block, m_Pool, false};
  const ConstView& m_ReadView = m_View;

 private:
  const std::uint64_t m_Cursors = FED_ConstDataRecord::s_InstanceCounter;
};

TEST_F(CursorTest, CopiesShareOneCursorThatGoesBackOnce) {
  Record& record = m_View.CreateIdDataRecord();
  {
    const Record copy(record);
    const FED_ConstIdDataRecord readCopy(copy);
    record.SetInteger(INT, 1107);
    m_View.DeleteIdDataRecord(record);
    EXPECT_EQ(copy.GetInteger(INT), 1107);
    EXPECT_EQ(readCopy.GetInteger(INT), 1107);
    EXPECT_EQ(m_Block.handedBack, 0);
    m_View.SetRecord(4, copy);
  }
  EXPECT_EQ(m_Block.handedBack, 1);
  EXPECT_TRUE(m_Block.HasRecord(4));
}

TEST_F(CursorTest, EachRecordHasItsOwn) {
  m_Block.AddRecords({1});
  FED_ConstIdDataRecord& first = m_ReadView.CreateDataRecord();
  FED_ConstIdDataRecord& second = m_ReadView.CreateIdDataRecord();
  Record& third = m_View.CreateDataRecord();
  EXPECT_EQ(second.GetDouble(DOUBLE), 0) << "before anything was read";
  third.SetDouble(DOUBLE, 4.5);
  m_View.SetRecord(2, third);
  m_ReadView.GetRecord(2, second);
  m_ReadView.GetRecord(1, first);
  EXPECT_EQ(first.GetDouble(DOUBLE), 0);
  EXPECT_EQ(second.GetDouble(DOUBLE), 4.5);
  m_ReadView.DeleteDataRecord(third);  // either view takes either kind
  m_View.DeleteDataRecord(first);
  m_ReadView.DeleteIdDataRecord(second);
  EXPECT_EQ(m_Block.handedBack, 3);
}

TEST_F(CursorTest, ReferenceToNoRecordIsIgnored) {
#if defined(__has_feature)
#if __has_feature(undefined_behavior_sanitizer)
  GTEST_SKIP() << "the sanitizer stops at the reference already";
#endif
#endif
  FED_ConstIdDataRecord* volatile none = nullptr;
  m_ReadView.DeleteDataRecord(*none);
  EXPECT_EQ(m_Block.handedBack, 0);
}

// A record of a derived view, which brings its cursor along.
class GivenRecord : public FED_ConstIdDataRecord {
 public:
  using FED_ConstIdDataRecord::FED_ConstIdDataRecord;
  GivenRecord(const ConstView& view, FED_ConstDataRecord& cursor, const FED_IdMapsPool& pool)
      : FED_ConstIdDataRecord(view, cursor, pool, FED_OnfInfoPool::FetchOnfInfo(kFormat)) {}
};

TEST_F(CursorTest, FailingAllocationLeavesNoCursor) {
  FED_DataBlock& block = m_Block;
  const std::function<void()> actions[] = {
      [&] { m_View.DeleteDataRecord(m_View.CreateDataRecord()); },
      [&] { m_View.DeleteDataRecord(m_ReadView.CreateDataRecord()); },
      [&] {
        FED_DataRecord& cursor = block.CreateDataRecord();
        cursor.SetInteger(INT, 3);
        const GivenRecord owner(m_View, cursor, m_Pool);
      },
  };
  for (const auto& action : actions) {
    EXPECT_GE(ForEachFailingAllocation(action, [&] { ExpectNoCursor(); }), 4u);
    ExpectNoCursor();
  }
}

TEST_F(CursorTest, BlockWithoutCursorsLeavesNoRecord) {
  class Exhausted : public FieldBlock {
   public:
    using FieldBlock::FieldBlock;
    FED_DataRecord& CreateDataRecord() override { throw std::runtime_error("none left"); }
    FED_ConstDataRecord& CreateDataRecord() const override { throw std::runtime_error("none"); }
  };
  Exhausted block(nullptr);
  View view(block, m_Pool, false);
  EXPECT_THROW(view.CreateDataRecord(), std::runtime_error);
  EXPECT_THROW(static_cast<const ConstView&>(view).CreateDataRecord(), std::runtime_error);
  EXPECT_EQ(block.handedBack, 0);
}

}  // namespace
