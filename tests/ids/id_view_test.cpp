// Which questions a view asks its map and its block, in which order, with what answer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "FED_ConstIdDataBlock.h"
#include "FED_IdDataBlock.h"
#include "FailureMatcher.h"
#include "IdFakes.h"
#include "RecordCursor.h"

namespace {

using namespace qelta::test;
using ConstView = FED_ConstIdDataBlock;
using View = FED_IdDataBlock;
using IdReader = qelta::ScopedCursor<const ConstView, FED_ConstIdDataRecord>;
using IdWriter = qelta::ScopedCursor<View, FED_IdDataRecord>;

constexpr const char* kFormat = "I|T";
constexpr int kNodes = 0;
constexpr int kNoMap = 15;
constexpr int kStranger = 999;

// A block with a record at index 3, whose tensor is 1 to 6, under recording maps.
class ViewTest : public testing::Test {
 protected:
  ViewTest() {
    SetRecordingMaps(m_Pool, "", 100, m_Calls);
    const double tensor[] = {1, 2, 3, 4, 5, 6};
    m_Block.SetTensor(3, tensor);
    m_Calls.clear();
  }

  // What `action` asked, with the type's number in the place of '#'.
  template <class Action>
  std::string Asked(int type, Action action) {
    m_Calls.clear();
    action();
    std::string line;
    for (const std::string& call : m_Calls) line += (line.empty() ? "" : ", ") + call;
    const std::string number = std::to_string(type) + '.';
    for (std::size_t at = 0; (at = line.find(number, at)) != line.npos;) {
      line.replace(at, number.size(), "#.");
    }
    return line;
  }

  Calls m_Calls;
  FED_IdMapsPool m_Pool;
  ChangedKind m_Kind{kFormat};
  FakeBlock m_Block{FED_DataDescriptor(), kFormat, &m_Calls, "b"};
};

using Read = double (*)(const ConstView&, int id);

template <void (ConstView::*GetValues)(int, double*) const>
double LastOf(const ConstView& view, int id) {
  double values[6] = {};
  (view.*GetValues)(id, values);
  return *std::max_element(values, values + 6);
}

template <class Key>
double ReadRecord(const ConstView& view, Key key) {
  const IdReader reader(view);
  view.GetRecord(key, *reader);
  return reader->GetDouble(1);
}

TEST_F(ViewTest, ReadingAsksInOrder) {
  const struct {
    Read read;
    double answer;  // of a type with a map, where index 3 has the id 103
    std::string asked;
    double plainAnswer;  // of type 15
    std::string plainAsked;
  } rows[] = {
      {[](auto& v, int) -> double { return v.GetId(3); }, 103, "#.IdOfIndex 3", 3, ""},
      {[](auto& v, int) -> double { return v.GetName(3) == "n3"; }, 1, "#.NameOfIndex 3", 1,
       "#.NameOfIndex 3"},
      {[](auto& v, int) -> double { return v.HasId(3); }, 1, "#.ContainsIndex 3", 0, ""},
      {[](auto& v, int) -> double { return v.HasId(0x100000003); }, 0, "#.ContainsIndex 4294967299",
       0, ""},
      {[](auto& v, int id) -> double { return v.HasRecord(id); }, 1,
       "#.ContainsId 103, #.IndexOfId 103, b.HasRecord 3", 1, "b.HasRecord 3"},
      {[](auto& v, int id) -> double { return v.HasRecord(id + 1); }, 0,
       "#.ContainsId 104, #.IndexOfId 104, b.HasRecord 4", 0, "b.HasRecord 4"},
      {[](auto& v, int) -> double { return v.HasRecord(kStranger); }, 0, "#.ContainsId 999", 0,
       "b.HasRecord 999"},
      {[](auto& v, int) -> double { return v.HasRecord("n3"); }, 1,
       "#.ContainsName n3, #.IndexOfName n3, b.HasRecord 3", 1,
       "#.ContainsName n3, #.IndexOfName n3, b.HasRecord 3"},
      {[](auto& v, int) -> double { return v.HasRecord("?"); }, 0, "#.ContainsName ?", 0,
       "#.ContainsName ?"},
      {[](auto& v, int id) { return ReadRecord(v, id); }, 1, "#.IndexOfId 103, b.GetRecord 3", 1,
       "b.GetRecord 3"},
      {[](auto& v, int) { return ReadRecord(v, "n3"); }, 1, "#.IndexOfName n3, b.GetRecord 3", 1,
       "#.IndexOfName n3, b.GetRecord 3"},
      {[](auto& v, int id) {
         double value = 0;
         v.GetScalar(id, value);
         return value;
       },
       1, "#.IndexOfId 103, b.GetScalar 3", 1, "b.GetScalar 3"},
      {LastOf<&ConstView::GetVector>, 3, "#.IndexOfId 103, b.GetVector 3", 3, "b.GetVector 3"},
      {LastOf<&ConstView::GetTensor>, 6, "#.IndexOfId 103, b.GetTensor 3", 6, "b.GetTensor 3"},
  };
  // The id type is that of the metadata; the block, a custom one, says 15. No flag counts here.
  for (const bool flag : {false, true}) {
    for (const auto& row : rows) {
      double answer = -1;
      m_Kind.Set(0, kNodes, flag);
      const ConstView view(m_Block, m_Pool);
      EXPECT_EQ(Asked(kNodes, [&] { answer = row.read(view, 103); }), row.asked);
      EXPECT_EQ(answer, row.answer) << row.asked;
      m_Kind.Set(0, kNoMap, flag);
      EXPECT_EQ(Asked(kNoMap, [&] { answer = row.read(view, 3); }), row.plainAsked);
      EXPECT_EQ(answer, row.plainAnswer) << row.asked;
    }
  }
}

TEST_F(ViewTest, WritingAsksForTheFlaggedIndex) {
  const double values[] = {7, 7, 7, 7, 7, 7};
  const struct {
    std::string what;
    std::function<void(View&, const FED_IdDataRecord&, int)> write;
    bool byName;
  } rows[] = {
      {"SetRecord", [](View& v, const FED_IdDataRecord& r, int id) { v.SetRecord(id, r); }, false},
      {"SetRecord", [](View& v, const FED_IdDataRecord& r, int) { v.SetRecord("n3", r); }, true},
      {"SetScalar", [](View& v, const FED_IdDataRecord&, int id) { v.SetScalar(id, 7); }, false},
      {"SetVector", [&](View& v, const FED_IdDataRecord&, int id) { v.SetVector(id, values); },
       false},
      {"SetTensor", [&](View& v, const FED_IdDataRecord&, int id) { v.SetTensor(id, values); },
       false},
  };
  for (const bool flag : {false, true}) {
    for (const int type : {kNodes, 11, kNoMap}) {
      m_Kind.Set(0, type, flag);
      View view(m_Block, m_Pool, false);
      const IdWriter writer(view);
      writer->SetDouble(1, 7);
      for (const auto& row : rows) {
        const bool hasMap = row.byName || type != kNoMap;
        const int id = type == kNoMap ? 3 : 100 + 1000 * type + 3;
        const std::size_t index = hasMap && flag ? 53 : 3;
        std::string asked = row.byName ? "#.IndexOfName" : "#.IndexOfId";
        asked += std::string(flag ? "ForWrite " : " ") + (row.byName ? "n3" : std::to_string(id));
        asked = (hasMap ? asked + ", " : "") + "b." + row.what + ' ' + std::to_string(index);
        m_Block.DropRecord(index);
        EXPECT_EQ(Asked(type, [&] { row.write(view, *writer, id); }), asked);
        EXPECT_EQ(m_Block.GetScalar(index), 7) << asked;
      }
    }
  }
}

TEST_F(ViewTest, WithoutMapIdsAreWidenedWithTheirSign) {
  m_Kind.Set(0, kNoMap, true);
  View view(m_Block, m_Pool, false);
  const IdWriter writer(view);
  const std::pair<int, std::string> rows[] = {{-1, "18446744073709551615"},
                                              {-2147483647 - 1, "18446744071562067968"},
                                              {2147483647, "2147483647"}};
  for (const auto& [id, index] : rows) {
    const auto read = [&, number = id] { view.HasRecord(number); };
    const auto write = [&, number = id] { view.SetRecord(number, *writer); };
    EXPECT_EQ(Asked(kNoMap, read), "b.HasRecord " + index);
    EXPECT_EQ(Asked(kNoMap, write), "b.SetRecord " + index);
  }
  EXPECT_EQ(view.GetId(0x180000005), -2147483643) << "cut to 32 bits";
}

TEST_F(ViewTest, FailuresOfMapAndBlockPassUnchanged) {
  m_Kind.Set(0, kNodes, true);
  View view(m_Block, m_Pool, false);
  double value = -1;
  EXPECT_EQ(FailureId([&] { view.GetScalar(kStranger, value); }), "900000000001");
  EXPECT_EQ(FailureId([&] { view.SetScalar(kStranger, 1); }), "900000000001");
  EXPECT_EQ(FailureId([&] { view.GetId(kStranger); }), "900000000001");
  EXPECT_THROW(view.GetScalar(104, value), std::out_of_range);
  EXPECT_EQ(value, -1);
}

TEST_F(ViewTest, LeadsToBlockKeyAndMap) {
  m_Kind.Set(0, 4, false);
  View view(m_Block, m_Pool, false);
  EXPECT_EQ(&view.GetDataBlock(), &m_Block);
  EXPECT_EQ(&static_cast<const ConstView&>(view).GetDataBlock(), &m_Block);
  EXPECT_EQ(&view.GetDescriptor(), &m_Block.GetDescriptor());
  EXPECT_EQ(&view.GetIdMap(), &m_Pool.GetMap(ID_TYPE_COORDINATE_SYSTEM));
  EXPECT_EQ(view.GetIdMap().GetMaxIndex(), -1) << "maps of other modules need not be enumerable";
  EXPECT_FALSE(view.GetIdMap().HasNameAt(3));
  m_Kind.Set(0, kNoMap, false);
  EXPECT_EQ(&view.GetIdMap(), &m_Pool.GetMap(ID_TYPE_RECORD_INDEX));

  const FakeBlock catalogued{FED_DataDescriptor(1, ONF_CONTACT_PAIR), &m_Calls, "b"};
  EXPECT_EQ(&ConstView(catalogued, m_Pool).GetIdMap(), &m_Pool.GetMap(ID_TYPE_CONTACT_PAIR));
}

TEST_F(ViewTest, CounterFollowsBothKindsAndTheirCopies) {
  const std::uint64_t before = ConstView::s_InstanceCounter;
  {
    const ConstView view(m_Block, m_Pool);
    const ConstView copy(view);
    View writable(m_Block, m_Pool, false);
    const View writableCopy(writable);
    const ConstView sliced(writable);
    EXPECT_EQ(ConstView::s_InstanceCounter - before, 5u);
    EXPECT_EQ(&copy.GetDataBlock(), &m_Block);
    EXPECT_EQ(copy.GetName(3), "n3");
    EXPECT_EQ(&writableCopy.GetIdMap(), &view.GetIdMap());
  }
  EXPECT_EQ(ConstView::s_InstanceCounter, before);
}

TEST_F(ViewTest, AsksForTheFlushOnceWhenItGoes) {
  const struct {
    const char* what;
    bool atFirst, later;
    std::string asked;
  } rows[] = {{"never", false, false, ""},
              {"from the start", true, true, "b.FlushDestroy"},
              {"later", false, true, "b.FlushDestroy"},
              {"no more", true, false, ""}};
  for (const auto& row : rows) {
    EXPECT_EQ(Asked(kNoMap,
                    [&] {
                      View view(m_Block, m_Pool, row.atFirst);
                      view.SetFlushDestroyBlock(row.later);
                      const IdWriter writer(view);
                      view.SetScalar(3, 1);
                    }),
              "b.SetScalar 3" + (row.asked.empty() ? "" : ", " + row.asked))
        << row.what;
  }
  // Through a pointer to the base, and not when nobody lives to the end of its construction.
  EXPECT_EQ(
      Asked(kNoMap,
            [&] { std::unique_ptr<ConstView>(std::make_unique<View>(m_Block, m_Pool, true)); }),
      "b.FlushDestroy");
}

}  // namespace
