// The assignment between id records of two blocks: the walk over the format, and what travels how.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "FED_IdDataBlock.h"
#include "FED_MemoryIdMap.h"
#include "FailureMatcher.h"
#include "IdFakes.h"
#include "RecordContent.h"
#include "RecordCursor.h"

namespace {

using namespace qelta::test;
using Ints = std::vector<int>;

constexpr int kNoMap = 15;

// Field i has the id type i, but every third has none.
void SetTypes(ChangedKind& kind, bool registers) {
  kind.Set(0, kNoMap, false);
  for (std::size_t i = 1; i <= kind->dataTypes.size(); ++i) {
    kind.Set(i, i % 3 == 0 ? kNoMap : static_cast<int>(i), registers);
  }
}

// Two blocks with a record at index 0 and an id record on each of them.
class Pair {
 public:
  Pair(const std::string& sourceFormat, const FED_IdMapsPool& sourceMaps,
       const std::string& targetFormat, const FED_IdMapsPool& targetMaps, Calls* calls = nullptr)
      : m_SourceMaps(sourceMaps),
        m_TargetMaps(targetMaps),
        m_From({}, sourceFormat, calls, "s"),
        m_To({}, targetFormat, calls, "t") {}

  FakeBlock& From() { return m_From; }
  FED_IdDataRecord& Source() { return *m_Source; }
  FED_IdDataRecord& Target() { return *m_Target; }

  void Read() { m_SourceView.GetRecord(0, Source()); }
  void Store() { m_TargetView.SetRecord(0, Target()); }
  void ExpectSame() const {
    EXPECT_EQ(ExternalContent(m_To, m_TargetMaps), ExternalContent(m_From, m_SourceMaps));
  }

 private:
  using View = FED_IdDataBlock;
  using Record = qelta::ScopedCursor<View, FED_IdDataRecord>;

  FED_IdMapsPool m_SourceMaps, m_TargetMaps;
  FakeBlock m_From, m_To;
  View m_SourceView{m_From, m_SourceMaps, false};
  View m_TargetView{m_To, m_TargetMaps, false};
  Record m_Source{m_SourceView}, m_Target{m_TargetView};
};

// Entity e of type t has the id 1000 t + e and the name "e<e>"; `places` gives its index.
FED_IdMapsPool MakeMaps(const Ints& places) {
  FED_IdMapsPool pool;
  for (int type = 0; type < kNoMap; ++type) {
    auto map = std::make_shared<FED_MemoryIdMap>(static_cast<FED_IdType>(type));
    for (std::size_t e = 0; e < places.size(); ++e) {
      map->Add(places[e], 1000 * type + static_cast<int>(e), "e" + std::to_string(e));
    }
    pool.SetMap(static_cast<FED_IdType>(type), map);
  }
  return pool;
}

TEST(RecordAssignment, WalksTheFormatOfTheTarget) {
  const struct {
    const char* source;
    const char* target;
  } rows[] = {{"I|IiSLODdVTft", "I|IiSLODdVTft"},
              {"S|OLSiI", "SOLSiI"},
              {"IOLSiIbbbDD", "I|O|L|S|i|I|D|D"},
              {"IbIbLb|bSb|", "Ib|bI|LSb"},
              {"I|I", "I||||I"},
              {"I", "I"},
              {"I|", "Ib"},
              {"IDtftfDV", "I|DtftfDV|"},
              {"I|SSSSSS", "S|bSbSbSbSbSbS"}};
  for (const auto& row : rows) {
    ChangedKind sourceKind{row.source}, targetKind{row.target};
    SetTypes(sourceKind, false);
    SetTypes(targetKind, true);
    Pair pair(row.source, MakeMaps({0, 1, 2, 3, 4, 5, 6, 7, 8}), row.target,
              MakeMaps({90, 8, 70, 6, 50, 4, 30, 2, 10}));
    int next = 6;
    FillRecord(pair.From(), 0, [&](FED_IdType) { return next = (next + 4) % 9; });
    pair.Read();
    EXPECT_EQ(&(pair.Target() = pair.Source()), &pair.Target());
    pair.Store();
    SCOPED_TRACE(row.target);
    pair.ExpectSame();
  }
}

TEST(RecordAssignment, AsksSourceThenTargetFieldByField) {
  constexpr const char* kFormat = "S|IiSL|ODd";
  for (const bool registers : {true, false}) {
    Calls calls;
    FED_IdMapsPool sourceMaps, targetMaps;
    SetRecordingMaps(sourceMaps, "s", 100, calls);
    SetRecordingMaps(targetMaps, "t", 100, calls);
    ChangedKind kind{kFormat};
    SetTypes(kind, registers);
    Pair pair(kFormat, sourceMaps, kFormat, targetMaps, &calls);
    int next = 5;
    FillRecord(pair.From(), 0, [&](FED_IdType) { return ++next; });
    pair.Read();
    calls.clear();
    pair.Target() = pair.Source();
    const std::string find = registers ? "IndexOfIdForWrite " : "IndexOfId ";
    EXPECT_EQ(Journal(calls),
              "s1.IdOfIndex 6, t1." + find + "1106, s2.IdOfIndex 7, t2." + find +
                  "2107, s.GetString 1, "
                  "s.GetIntList 1, s4.IdOfIndex 8, s4.IdOfIndex 9, s4.IdOfIndex 10, t4." +
                  find + "4108, t4." + find + "4109, t4." + find +
                  "4110, t.SetIntList 3, "
                  "s.GetIntList 2, s5.IdOfIndex 11, s5.IdOfIndex 12, s5.IdOfIndex 13, t5." +
                  find + "5111, t5." + find + "5112, t5." + find + "5113, t.SetIntList 3");
  }
}

// The types and flags of the target for writing, the types of the source for reading.
TEST(RecordAssignment, EachSideGoesByItsOwnMetadata) {
  Calls calls;
  FED_IdMapsPool sourceMaps, targetMaps;
  SetRecordingMaps(sourceMaps, "s", 0, calls);
  SetRecordingMaps(targetMaps, "t", 100, calls);
  ChangedKind sourceKind{"I|II"}, targetKind{"I|ii"};
  sourceKind.Set(1, 1, false).Set(2, kNoMap, true);
  targetKind.Set(1, kNoMap, false).Set(2, 2, true);
  Pair pair("I|II", sourceMaps, "I|ii", targetMaps);
  pair.Source().SetInteger(1, 1004);
  pair.Source().SetInteger(2, 2105);
  calls.clear();
  pair.Target() = static_cast<const FED_ConstIdDataRecord&>(pair.Source());
  EXPECT_EQ(Journal(calls), "s1.IdOfIndex 4, t2.IndexOfIdForWrite 2105");
  EXPECT_EQ(pair.Target().GetInteger(1), 1004);
}

TEST(RecordAssignment, FailureLeavesTheFieldsBeforeItWritten) {
  constexpr const char* kFormat = "I|IiIS";
  Calls calls;
  FED_IdMapsPool sourceMaps, targetMaps;
  SetRecordingMaps(sourceMaps, "s", 100, calls);
  SetRecordingMaps(targetMaps, "t", 110, calls);  // does not know what the source calls 100 to 109
  ChangedKind kind{kFormat};
  SetTypes(kind, false);
  Pair pair(kFormat, sourceMaps, kFormat, targetMaps);
  pair.Source().SetInteger(1, 1112);
  pair.Source().SetInteger(2, 2105);
  pair.Source().SetInteger(3, 77);
  pair.Target().SetInteger(1, 1111);
  pair.Target().SetInteger(2, 2111);
  EXPECT_EQ(FailureId([&] { pair.Target() = pair.Source(); }), "900000000001");
  EXPECT_EQ(pair.Target().GetInteger(1), 1112);
  EXPECT_EQ(pair.Target().GetInteger(2), 2111);
  EXPECT_EQ(pair.Target().GetInteger(3), 0);
}

}  // namespace
