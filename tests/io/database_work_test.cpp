#include <FED_MemoryDatabase.h>
#include <QeltaBlockCopy.h>
#include <QeltaBlockStatistics.h>
#include <QeltaCsvImport.h>
#include <QeltaDatabaseDiff.h>
#include <QeltaRecordRows.h>
#include <QeltaTensor.h>
#include <RecordCursor.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

#include "FailureMatcher.h"

namespace qelta::test {
namespace {

using Key = FED_DataDescriptor;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Database : FED_MemoryDatabase {
  Database() { InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L""); }

  FED_DataBlock& Block(FED_OnfId kind) { return FetchDataBlock(Key(kind), std::size_t{0}); }
  std::size_t Node(std::int32_t id) {
    return static_cast<std::size_t>(GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfIdForWrite(id));
  }
};

Key Labelled(const std::string& label) {
  Key key;
  key.SetString(Key::LABEL, label);
  return key;
}

// The invariants of a tensor from its eigenvalues are those from its components, and so is the von
// Mises stress.
TEST(Tensor, HasTheRightEigenvalues) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> value(-1, 1);
  for (int round = 0; round < 2000; ++round) {
    const double scale = std::pow(10.0, round % 40 - 20);
    double t[6];
    for (double& one : t) one = round % 3 == 0 && value(random) > 0 ? 0 : scale * value(random);
    const auto [p, q, r] = PrincipalValues(t);
    const double trace = t[0] + t[1] + t[2];
    const double minors =
        t[0] * t[1] + t[1] * t[2] + t[2] * t[0] - t[3] * t[3] - t[4] * t[4] - t[5] * t[5];
    const double determinant = t[0] * (t[1] * t[2] - t[4] * t[4]) -
                               t[3] * (t[3] * t[2] - t[4] * t[5]) +
                               t[5] * (t[3] * t[4] - t[1] * t[5]);
    EXPECT_TRUE(p >= q && q >= r);
    EXPECT_NEAR(p + q + r, trace, 1e-14 * scale);
    EXPECT_NEAR(p * q + q * r + r * p, minors, 1e-13 * scale * scale);
    EXPECT_NEAR(p * q * r, determinant, 1e-13 * scale * scale * scale);
    EXPECT_NEAR(VonMises(t),
                std::sqrt(((p - q) * (p - q) + (q - r) * (q - r) + (r - p) * (r - p)) / 2),
                1e-13 * scale);
  }
  const double damaged[6] = {1, kNaN, 0, 0, 0, 0};
  EXPECT_TRUE(std::isnan(PrincipalValues(damaged)[0]));
}

TEST(Statistics, OfAVectorWithAGapAndANaN) {
  Database database;
  FED_DataBlock& block = database.Block(ONF_DISPLACEMENT);
  const double rows[3][3] = {{1, -2, 2}, {3, kNaN, 0}, {-4, 6, 0}};
  const std::size_t indices[3] = {0, 5, 70000};
  for (int i = 0; i < 3; ++i) block.SetVector(indices[i], rows[i]);
  const auto results = ComputeStatistics(block);
  ASSERT_EQ(results.size(), 4u);
  EXPECT_EQ(results[0].title, "DISPLACEMENT.x");
  EXPECT_EQ(results[0].lowest, -4);
  EXPECT_EQ(results[0].lowestAt, 70000u);
  EXPECT_EQ(results[0].highestAt, 5u);
  EXPECT_EQ(results[0].mean, 0);
  EXPECT_DOUBLE_EQ(results[0].norm, std::sqrt(26.0));
  EXPECT_EQ(results[1].count, 2u);
  EXPECT_EQ(results[1].notANumber, 1u);
  EXPECT_EQ(results[1].mean, 2);
  EXPECT_EQ(results[3].title, "DISPLACEMENT.magnitude");
  EXPECT_EQ(results[3].lowest, 3);
  EXPECT_DOUBLE_EQ(results[3].highest, std::sqrt(52.0));
  EXPECT_TRUE(ComputeStatistics(database.Block(ONF_TEXT_NOTE)).empty());
}

TEST(Diff, OfNumbers) {
  struct Row {
    double a, b, absolute, relative;
    bool areSame;
  };
  const Row rows[] = {{1, 1, 0, 0, true},
                      {1, 1 + 1e-9, 0, 0, false},
                      {1, 1.5, 0.5, 0, true},
                      {1, 1.6, 0.5, 0, false},
                      {100, 101, 0, 0.01, true},
                      {-100, -101, 0, 0.009, false},
                      {0, 1e-9, 0, 0.5, false},
                      {0, -0.0, 0, 0, true},
                      {kNaN, kNaN, 0, 0, true},
                      {kNaN, 1, 1e300, 1, false},
                      {kInfinity, kInfinity, 0, 0, true},
                      {kInfinity, 1, 1e300, 1, false},
                      {kInfinity, -kInfinity, 0, 9, false}};
  for (const Row& row : rows) {
    const QeltaTolerances tolerances{row.absolute, row.relative, {}};
    EXPECT_EQ(tolerances.AreSame(row.a, row.b), row.areSame) << row.a << " " << row.b;
    EXPECT_EQ(tolerances.AreSame(row.b, row.a), row.areSame) << row.a << " " << row.b;
  }
}

// The same nodes in another order, the same element lists by other indices.
void Fill(Database& database, const std::vector<std::int32_t>& nodes) {
  for (const std::int32_t id : nodes) {
    const double u[3] = {id * 1.0, 0.5, id == 9 ? kNaN : 0};
    database.Block(ONF_DISPLACEMENT).SetVector(database.Node(id), u);
  }
  FED_DataBlock& groups = database.Block(ONF_NODE_GROUP);
  const RecordWriter record(groups);
  record->SetIntList(
      1, std::vector<int>{static_cast<int>(database.Node(9)), static_cast<int>(database.Node(27))});
  groups.SetRecord(
      static_cast<std::size_t>(
          database.GetIdMapsPool().GetMap(ID_TYPE_NODE_GROUP).IndexOfNameForWrite("TOP")),
      *record);
}

TEST(Diff, MatchesRecordsById) {
  Database a, b;
  Fill(a, {9, 18, 27});
  Fill(b, {27, 9, 18});
  const QeltaDatabaseDiff diff(a, b, {});
  const auto pairs = QeltaDatabaseDiff::Match(a.FindBlocks({}), b.FindBlocks({}), {});
  ASSERT_EQ(pairs.size(), 2u);
  for (const auto& pair : pairs) EXPECT_EQ(diff.Compare(pair).state, QeltaBlockDifference::SAME);

  double u[3] = {18.25, 0.5, 0};
  b.Block(ONF_DISPLACEMENT).SetVector(b.Node(18), u);
  u[2] = 7;
  b.Block(ONF_DISPLACEMENT).SetVector(b.Node(36), u);
  const auto different = CompareBlocks(a.Block(ONF_DISPLACEMENT), a.GetIdMapsPool(),
                                       b.Block(ONF_DISPLACEMENT), b.GetIdMapsPool(), {});
  EXPECT_EQ(different.state, QeltaBlockDifference::DIFFERENT);
  EXPECT_EQ(different.records, 3u);
  EXPECT_EQ(different.onlyInSecond, 1u);
  EXPECT_EQ(different.values, 1u);
  EXPECT_EQ(different.greatest, 0.25);
  EXPECT_EQ(different.worst, "node 18, DISPLACEMENT.x: 18 and 18.25");
}

TEST(Diff, MatchesKeysWithoutSomeFields) {
  const auto key = [](int iteration, int state) { return Key(iteration, ONF_DISPLACEMENT, state); };
  const std::vector<Key> first = {key(1, 1), key(1, 2), key(2, 1)};
  const std::vector<Key> second = {key(7, 2), key(7, 1), key(7, 3)};
  const auto pairs = QeltaDatabaseDiff::Match(first, second, {Key::ITERATION});
  ASSERT_EQ(pairs.size(), 4u);
  EXPECT_EQ(pairs[0].second, second[1]);
  EXPECT_EQ(pairs[1].second, second[0]);
  EXPECT_EQ(pairs[2].second, Key());
  EXPECT_EQ(pairs[3].second, second[2]);
}

TEST(Copy, TranslatesCustomBlocksOfNodesAndHonoursWhatIsThere) {
  Database source, target;
  Fill(source, {9, 18, 27});
  Key key = Labelled("NOTES");
  key.SetInteger(Key::ID_TYPE, ID_TYPE_NODE);
  FED_DataBlock& notes = source.FetchDataBlock(key, 0, 0, "I|Sd");
  const RecordWriter record(notes);
  record->SetString(1, "eighteen");
  record->SetDouble(2, 18);
  notes.SetRecord(source.Node(18), *record);
  target.Node(27);
  target.Node(18);

  QeltaBlockCopy copy(source, target, source.FindBlocks({}), QeltaKeyChanges({"ITERATION=4"}),
                      QeltaConflict::Fail);
  copy.CopyIds();
  for (std::size_t i = 0; i < copy.GetJobs().size(); ++i) copy.CopyBlock(i);
  key.SetInteger(Key::ITERATION, 4);
  QeltaRecordRows rows(target.GetDataBlock(key), target.GetIdMapsPool());
  EXPECT_EQ(rows.IndexOfId(18), target.Node(18));
  EXPECT_EQ(rows.Cells(target.Node(18))[0], QeltaCell("eighteen"));

  const auto again = [&](QeltaConflict conflict) {
    return QeltaBlockCopy(source, target, source.FindBlocks({}), QeltaKeyChanges({"ITERATION=4"}),
                          conflict);
  };
  CatchFailure([&] { again(QeltaConflict::Fail); });
  EXPECT_EQ(again(QeltaConflict::Skip).GetSkippedCount(), 3u);
  EXPECT_EQ(again(QeltaConflict::Replace).GetReplacedCount(), 3u);
  CatchFailure([&] {
    QeltaBlockCopy(source, target, source.FindBlocks({}),
                   QeltaKeyChanges({"ONF=!", "LABEL=x", "ID_TYPE=!"}), QeltaConflict::Replace);
  });
}

std::uint64_t ImportText(Database& database, const std::string& text, const Key& key) {
  std::istringstream stream(text);
  return QeltaCsvImport(stream, "t.csv").Store(database, key);
}

TEST(Csv, BecomesRecordsOfFittingTypes) {
  Database database;
  Key key = Labelled("T");
  key.SetInteger(Key::ID_TYPE, ID_TYPE_NODE);
  const std::string text =
      "id,count,u.x,u.y,u.z,name,value\r\n"
      "30,1,1,2.5,-3e2,\"a, \"\"b\"\"\nc\",0.1\r\n"
      "\r\n"
      "20,-7,nan,inf,,plain,";
  EXPECT_EQ(ImportText(database, text, key), 2u);
  const FED_DataBlock& block = database.GetDataBlock(key);
  EXPECT_EQ(block.GetFormat(), "I|iVSd");
  QeltaRecordRows rows(block, database.GetIdMapsPool());
  const auto first = rows.Cells(*rows.IndexOfId(30));
  EXPECT_EQ(first[3], QeltaCell(-300.0));
  EXPECT_EQ(first[4], QeltaCell("a, \"b\"\nc"));
  EXPECT_EQ(first[5], QeltaCell(0.1));
  const auto second = rows.Cells(*rows.IndexOfId(20));
  EXPECT_EQ(second[0], QeltaCell(std::int64_t{-7}));
  EXPECT_EQ(second[2], QeltaCell(kInfinity));
  EXPECT_TRUE(std::isnan(std::get<double>(second[5])));

  EXPECT_EQ(ImportText(database, "index,x\n7,1.5\n3,2", Labelled("I")), 2u);
  EXPECT_EQ(database.GetDataBlock(Labelled("I")).GetScalar(3), 2);
  EXPECT_EQ(ImportText(database, "x\n5\n6\n", Labelled("I")), 2u);
  EXPECT_EQ(database.GetDataBlock(Labelled("I")).GetInteger(1), 6);
}

TEST(Csv, DamageNamesTheLineAndChangesNoBlock) {
  Database database;
  ImportText(database, "x\n5\n", Labelled("T"));
  const std::pair<const char*, const char*> rows[] = {
      {"", "t.csv, line 1: there is no header"},
      {"a,b\n1,2\n3\n", "line 3: 1 values under 2"},
      {"a\n\"1\n", "line 2: a quote is not"},
      {"a\n\"1\"2\n", "line 2: something stands"},
      {"id,index\n1,2\n", "no column of values"},
      {"index,a\n-1,2\n", "line 2: '-1' is no record"},
      {"index,a\n1,2\n1,3\n", "line 3: there is an earlier row"}};
  for (const auto& [text, message] : rows) {
    const FED_Failure failure =
        CatchFailure([&, text = text] { ImportText(database, text, Labelled("T")); });
    EXPECT_NE(failure.GetMessageText().find(message), std::string::npos) << failure.what();
    EXPECT_EQ(database.GetDataBlock(Labelled("T")).GetInteger(0), 5);
  }
}

}  // namespace
}  // namespace qelta::test
