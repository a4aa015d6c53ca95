#include <FED_MemoryDatabase.h>
#include <FED_Message.h>
#include <QeltaBulkAccess.h>
#include <QeltaSeries.h>
#include <gtest/gtest.h>

#include <cmath>

#include "FailureMatcher.h"

namespace qelta::test {
namespace {

using Key = FED_DataDescriptor;

void Write(FED_DataBlock& block, std::size_t index, const std::vector<double>& record) {
  QeltaBulkAccess::WriteRun(block, index, 1, record.data());
}

// Displacements (value, 0, 0) of two nodes over iterations and load cases, the time of each
// iteration, an objective, and a history.
class Series : public testing::Test {
 protected:
  Series() {
    m_Database.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"");
    for (const std::int32_t id : {11, 22}) {
      m_Database.GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfIdForWrite(id);
    }
    for (int iteration = 1; iteration <= 3; ++iteration) {
      for (int loadcase = 1; loadcase <= 2; ++loadcase) {
        Key key(iteration, ONF_DISPLACEMENT);
        key.SetInteger(Key::LOADCASE, loadcase);
        FED_DataBlock& block = m_Database.FetchDataBlock(key, 0);
        Write(block, 0, {100.0 * loadcase + iteration, 0, 0});
        if (iteration != 2) Write(block, 1, {-3, 4.0 * iteration, 0});
      }
      const double value = 9 - iteration, time = iteration / 8.0;
      Write(m_Database.FetchDataBlock(Key(iteration, ONF_OBJECTIVE_VALUE), 0), 0, {value});
      Write(m_Database.FetchDataBlock(Key(iteration, ONF_FRAME_TIME), 0), 0, {time});
    }
    Key history;
    history.SetString(Key::LABEL, "HISTORY");
    FED_DataBlock& block = m_Database.FetchDataBlock(history, 0, 0, "I|dd");
    Write(block, 0, {1, 0});
    Write(block, 1, {5, 1});
    Write(block, 2, {1, 4});
  }

  std::vector<QeltaSeries> Collect(const QeltaSeriesRequest& request) {
    return CollectSeries(m_Database, m_Database.FindBlocks({}), request);
  }

  // "name over xName: x=y ..." a line.
  std::string Told(const QeltaSeriesRequest& request) {
    std::string text;
    for (const QeltaSeries& one : Collect(request)) {
      text += one.name + " over " + one.xName + ":";
      for (std::size_t i = 0; i < one.x.size(); ++i) {
        text += FED_MESSAGE(" %g=%s", one.x[i],
                            std::isnan(one.y[i]) ? "nan" : FED_MESSAGE("%g", one.y[i]).c_str());
      }
      text += "\n";
    }
    return text;
  }

  FED_MemoryDatabase m_Database;
};

QeltaRecordChoice Node(int id) { return {QeltaRecordChoice::By::Id, id, {}}; }
QeltaRecordChoice Index(int index) { return {QeltaRecordChoice::By::Index, index, {}}; }

TEST_F(Series, AreSplitByWhatTellsTheirBlocksApart) {
  EXPECT_EQ(Told({{"OBJECTIVE_VALUE"}, "", {}, {}, {}}),
            "OBJECTIVE_VALUE over ITERATION: 1=8 2=7 3=6\n");
  EXPECT_EQ(Told({{"displacement.X"}, "", {Node(11), Node(33)}, {}, {}}),
            "DISPLACEMENT.x, node 11, LOADCASE 1 over ITERATION: 1=101 2=102 3=103\n"
            "DISPLACEMENT.x, node 33, LOADCASE 1 over ITERATION: 1=nan 2=nan 3=nan\n"
            "DISPLACEMENT.x, node 11, LOADCASE 2 over ITERATION: 1=201 2=202 3=203\n"
            "DISPLACEMENT.x, node 33, LOADCASE 2 over ITERATION: 1=nan 2=nan 3=nan\n");
  // A time belongs to an iteration here, not to its load cases.
  EXPECT_EQ(Told({{"VALUE"}, "time", {}, {}, {}}),
            "OBJECTIVE_VALUE over time: 0.125=8 0.25=7 0.375=6\n");
  EXPECT_EQ(Told({{"DISPLACEMENT.y"}, "LOADCASE", {Index(1)}, {}, Key::ITERATION}),
            "DISPLACEMENT.y, record 1, ITERATION 1 over LOADCASE: 1=4 2=4\n"
            "DISPLACEMENT.y, record 1, ITERATION 2 over LOADCASE: 1=nan 2=nan\n"
            "DISPLACEMENT.y, record 1, ITERATION 3 over LOADCASE: 1=12 2=12\n");
}

TEST_F(Series, ReduceManyRecords) {
  const char* const expected[] = {
      "max DISPLACEMENT.magnitude, LOADCASE 1 over ITERATION: 1=101",
      "min DISPLACEMENT.magnitude, LOADCASE 1 over ITERATION: 1=5",
      "mean DISPLACEMENT.magnitude, LOADCASE 1 over ITERATION: 1=53",
      "norm DISPLACEMENT.magnitude, LOADCASE 1 over ITERATION: 1=101.124"};
  for (int of = 0; of < 4; ++of) {
    const auto reduction = static_cast<QeltaReduction>(of);
    const std::string told = Told({{"magnitude"}, "", {}, reduction, {}});
    EXPECT_EQ(told.substr(0, told.find(" 2=")), expected[of]);
    EXPECT_EQ(Told({{"OBJECTIVE_VALUE"}, "", {}, reduction, {}}).substr(0, 15), "OBJECTIVE_VALUE");
  }
}

TEST_F(Series, GoOverTheRecordsOfABlock) {
  EXPECT_EQ(Told({{"HISTORY.FIELD_2"}, "", {}, {}, {}}),
            "HISTORY.FIELD_2 over record index: 0=0 1=1 2=4\n");
  EXPECT_EQ(Told({{"FIELD_2"}, "field_1", {}, {}, {}}),
            "HISTORY.FIELD_2 over field_1: 1=0 5=1 1=4\n");
}

TEST_F(Series, NeedOnlySomeBlocks) {
  const std::vector<Key> all = m_Database.FindBlocks({});
  EXPECT_EQ(KeysForSeries(all, all, {{"DISPLACEMENT.x"}, "", {}, {}, {}}).size(), 6u + 1);
  EXPECT_EQ(KeysForSeries(all, all, {{"DISPLACEMENT.x"}, "time", {}, {}, {}}).size(), 6u + 1 + 3);
}

TEST_F(Series, RefuseWhatTheBlocksDoNotHave) {
  const QeltaSeriesRequest requests[] = {{{"HISTORY"}, "", {}, {}, {}},
                                         {{"DISPLACEMENT"}, "", {}, {}, {}},
                                         {{"DISPLACEMENT.w"}, "", {}, {}, {}},
                                         {{"DISPLACEMENT.x", "DISP.x"}, "", {}, {}, {}},
                                         {{"DISPLACEMENT.x"}, "frequency", {}, {}, {}},
                                         {{"DISPLACEMENT.x"}, "FIELD_1", {}, {}, {}},
                                         {{"HISTORY.FIELD_1"}, "", {Index(1)}, {}, {}},
                                         {{"FIELD_1"}, "index", {Index(1)}, {}, {}}};
  for (const QeltaSeriesRequest& request : requests) {
    const FED_Failure failure = CatchFailure([&] { Collect(request); });
    EXPECT_TRUE(IsBadSeriesRequest(failure)) << request.y.back() << failure.what();
  }
}

}  // namespace
}  // namespace qelta::test
