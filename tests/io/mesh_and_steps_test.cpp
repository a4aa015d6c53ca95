#include <FED_MemoryDatabase.h>
#include <FrdImport.h>
#include <QeltaMesh.h>
#include <QeltaSteps.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FailureMatcher.h"

namespace qelta::test {
namespace {

using Key = FED_DataDescriptor;
using testing::ElementsAre;

struct Database : FED_MemoryDatabase {
  Database() { InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L""); }

  void SetNode(const Key& key, std::size_t index) {
    const double place[3] = {static_cast<double>(index), 0.5, -1};
    FetchDataBlock(key, std::size_t{0}).SetVector(index, place);
  }
  void SetElement(Key key, std::size_t index, int type, const std::vector<int>& nodes) {
    key.SetInteger(Key::ONF, ONF_ELEMENT_TOPOLOGY);
    FED_DataBlock& block = FetchDataBlock(key, std::size_t{0});
    FED_DataRecord& record = block.CreateDataRecord();
    record.SetInteger(1, type);
    record.SetInteger(2, static_cast<int>(block.SetIntList(nodes.data(), nodes.size())));
    block.SetRecord(index, record);
    block.DeleteDataRecord(record);
  }
};

Key MakeKey(std::initializer_list<std::pair<Key::ResultIndex, int>> values,
            const std::string& label = {}) {
  Key key;
  for (const auto& [field, value] : values) key.SetInteger(field, value);
  if (!label.empty()) key.SetString(Key::LABEL, label);
  return key;
}

TEST(Mesh, IsNumberedWithoutGaps) {
  Database database;
  const Key key(ONF_NODE_COORDINATES);
  for (const std::size_t index : {3u, 4u, 10u, 70000u}) database.SetNode(key, index);
  database.SetElement(key, 8, 5, {10, 3, 70000});
  database.SetElement(key, 2, 3, {4, 70000});
  const QeltaMesh mesh(database, key);
  std::vector<double> x;
  mesh.VisitNodes([&](std::size_t first, std::size_t count, const double* coordinates) {
    EXPECT_EQ(first, x.size());
    for (std::size_t i = 0; i < count; ++i) x.push_back(coordinates[3 * i]);
  });
  EXPECT_THAT(x, ElementsAre(3, 4, 10, 70000));
  for (std::size_t i = 0; i < x.size(); ++i) {
    EXPECT_EQ(mesh.GetNodes().Find(static_cast<std::size_t>(x[i])), i);
    EXPECT_EQ(mesh.GetNodes().IndexAt(i), x[i]);
  }
  for (const std::size_t absent : {0u, 5u, 11u, 69999u, 70001u}) {
    EXPECT_FALSE(mesh.GetNodes().Find(absent));
  }
  std::vector<std::vector<std::int64_t>> cells;
  mesh.VisitCells([&](const QeltaMesh::Cell& cell) { cells.push_back(cell.nodes); });
  EXPECT_THAT(cells, ElementsAre(ElementsAre(1, 3), ElementsAre(2, 0, 3)));
}

TEST(Mesh, RefusesElementsThatDoNotFit) {
  struct Case {
    int type;
    std::vector<int> nodes;
    const char* id;
  };
  for (const Case& one : {Case{5, {0, 1}, "310000001101"}, Case{3, {0, 2}, "310000001102"},
                          Case{3, {0, -1}, "310000001102"}}) {
    Database database;
    const Key key(ONF_NODE_COORDINATES);
    for (const std::size_t index : {0u, 1u}) database.SetNode(key, index);
    database.SetElement(key, 0, one.type, one.nodes);
    const QeltaMesh mesh(database, key);
    EXPECT_EQ(FailureId([&] { mesh.VisitCells([](const QeltaMesh::Cell&) {}); }), one.id);
  }
}

TEST(Mesh, OfMovedNodesHasTheCommonElements) {
  Database database;
  const Key moved = MakeKey({{Key::ONF, ONF_NODE_COORDINATES}, {Key::ITERATION, 4}});
  const Key second = MakeKey({{Key::ONF, ONF_NODE_COORDINATES}}, "#2");
  for (const std::size_t index : {0u, 1u}) database.SetNode(moved, index);
  database.SetNode(second, 0);
  database.SetElement(Key(ONF_NODE_COORDINATES), 0, 3, {0, 1});
  EXPECT_EQ(QeltaMesh(database, moved).GetCells().GetCount(), 1u);
  EXPECT_EQ(QeltaMesh(database, second).GetCells().GetCount(), 0u);
}

// A unit wedge whose base looks inside, and the same as VTK has it.
TEST(Mesh, TurnsLinearWedges) {
  Database database;
  const Key key(ONF_NODE_COORDINATES);
  const double places[6][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}};
  FED_DataBlock& nodes = database.FetchDataBlock(key, std::size_t{6});
  for (std::size_t i = 0; i < 6; ++i) nodes.SetVector(i, places[i]);
  database.SetElement(key, 0, 13, {0, 1, 2, 3, 4, 5});
  database.SetElement(key, 1, 13, {0, 2, 1, 3, 5, 4});
  std::size_t count = 0;
  QeltaMesh(database, key).VisitCells([&count](const QeltaMesh::Cell& cell) {
    EXPECT_THAT(cell.nodes, ElementsAre(0, 2, 1, 3, 5, 4));
    ++count;
  });
  EXPECT_EQ(count, 2u);
}

TEST(Meshes, BlocksFindTheirs) {
  Database database;
  const Key common = MakeKey({{Key::ONF, ONF_NODE_COORDINATES}});
  const Key second = MakeKey({{Key::ONF, ONF_NODE_COORDINATES}}, "#2");
  const Key moved = MakeKey({{Key::ONF, ONF_NODE_COORDINATES}, {Key::ITERATION, 4}});
  EXPECT_EQ(QeltaMeshes(database).Find(common), nullptr);
  for (const Key& key : {second, moved, common}) database.SetNode(key, 0);
  const QeltaMeshes meshes(database);
  EXPECT_EQ(meshes.GetAll().size(), 3u);
  EXPECT_EQ(meshes.Find(MakeKey({{Key::ITERATION, 4}}))->GetKey(), moved);
  EXPECT_EQ(meshes.Find(MakeKey({{Key::ITERATION, 5}}))->GetKey(), common);
  EXPECT_EQ(meshes.Find(Key(ONF_DISPLACEMENT))->GetKey(), common);
  EXPECT_EQ(meshes.Find(MakeKey({}, "#2"))->GetKey(), second);
}

TEST(Steps, OfASolverRun) {
  Database database;
  ImportFrd(QELTA_EXAMPLE_DATA "/cantilever.frd", database);
  const QeltaSteps all = FindSteps(database, database.FindBlocks(FED_DataDescriptorPattern()));
  ASSERT_EQ(all.steps.size(), 8u);
  EXPECT_EQ(all.constant.size(), 4u);
  EXPECT_EQ(ScaleOf(all.steps).name, "SUBSTEP");
  const std::vector<QeltaStep> increments(all.steps.begin(), all.steps.begin() + 4);
  EXPECT_EQ(ScaleOf(increments).name, "time");
  EXPECT_THAT(ScaleOf(increments).values, ElementsAre(0.25, 0.5, 0.75, 1));
  EXPECT_EQ(all.steps[4].valueName, "frequency");
}

TEST(Steps, BlocksThatSayLessHoldAtAllThatAgree) {
  const Database database;
  const Key density = MakeKey({{Key::ITERATION, 3}});
  const Key load1 = MakeKey({{Key::ITERATION, 3}, {Key::LOADCASE, 1}});
  const Key load2 = MakeKey({{Key::ITERATION, 3}, {Key::LOADCASE, 2}});
  const Key other = MakeKey({{Key::ITERATION, 4}});
  const QeltaSteps found = FindSteps(database, {density, other, load1, load2});
  ASSERT_EQ(found.steps.size(), 3u);
  EXPECT_THAT(found.steps[0].blocks, ElementsAre(density, load1));
  EXPECT_THAT(found.steps[1].blocks, ElementsAre(density, load2));
  EXPECT_THAT(found.steps[2].blocks, ElementsAre(other));
  EXPECT_THAT(NameBlocks({density, load1}), ElementsAre("custom", "custom_custom"));
}

TEST(Steps, AreNumberedWhenNothingGrows) {
  const Database database;
  const auto scale = [&](const std::vector<Key>& keys) {
    return ScaleOf(FindSteps(database, keys).steps);
  };
  EXPECT_EQ(scale({MakeKey({{Key::ITERATION, 7}}), MakeKey({{Key::ITERATION, -1}})}).values,
            (std::vector<double>{-1, 7}));
  EXPECT_TRUE(HoldsAt(MakeKey({{Key::ITERATION, 3}, {Key::LAYER, 1}}),
                      MakeKey({{Key::ITERATION, 3}, {Key::LOADCASE, 1}})));
  EXPECT_FALSE(HoldsAt(MakeKey({{Key::ITERATION, 3}}), MakeKey({{Key::LOADCASE, 1}})));
  const QeltaStepScale counted = scale({MakeKey({{Key::LOADCASE, 1}, {Key::STATE, 2}}),
                                        MakeKey({{Key::LOADCASE, 1}, {Key::INCREMENT, 1}})});
  EXPECT_EQ(counted.name, "step");
  EXPECT_THAT(counted.values, ElementsAre(0, 1));
}

TEST(BlockNames, SayWhatTellsApart) {
  const std::vector<Key> keys = {
      MakeKey({{Key::INCREMENT, 1}, {Key::ONF, ONF_DISPLACEMENT}}, "DISP"),
      MakeKey({{Key::INCREMENT, 2}, {Key::ONF, ONF_DISPLACEMENT}}, "DISP"),
      MakeKey({{Key::INCREMENT, 2}, {Key::ONF, ONF_MODE_SHAPE}}, "DISP"),
      MakeKey({{Key::SUB_LEVEL, 2}}, "PDISP"),
      MakeKey({{Key::SUB_LEVEL, 3}}, "PDISP"),
      MakeKey({{Key::LAYER, 1}}, "STRNEG"),
      MakeKey({{Key::ONF, ONF_TEMPERATURE}}),
      MakeKey({{Key::ONF, ONF_TEMPERATURE}, {Key::LAYER, 2}}),
      MakeKey({{Key::ID_TYPE, 0}}),
      MakeKey({{Key::ID_TYPE, 1}})};
  EXPECT_THAT(NameBlocks(keys), ElementsAre("DISP", "DISP", "DISP_MODE_SHAPE", "PDISP_amplitude",
                                            "PDISP_phase", "STRNEG", "TEMPERATURE",
                                            "TEMPERATURE_layer2", "custom", "custom_custom"));
}

}  // namespace
}  // namespace qelta::test
