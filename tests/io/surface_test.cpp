#include <FED_MemoryDatabase.h>
#include <FrdImport.h>
#include <QeltaMeshFields.h>
#include <QeltaSurface.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <random>
#include <set>

namespace qelta::test {
namespace {

using Key = FED_DataDescriptor;
using Point = std::array<double, 3>;
using testing::ElementsAre;
using testing::IsEmpty;

struct Database : FED_MemoryDatabase {
  Database() { InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L""); }

  void SetNode(std::size_t index, const Point& place) {
    FetchDataBlock(Key(ONF_NODE_COORDINATES), std::size_t{0}).SetVector(index, place.data());
  }
  void AddElement(int type, const std::vector<int>& nodes) {
    FED_DataBlock& block = FetchDataBlock(Key(ONF_ELEMENT_TOPOLOGY), std::size_t{0});
    FED_DataRecord& record = block.CreateDataRecord();
    record.SetInteger(1, type);
    record.SetInteger(2, static_cast<int>(block.SetIntList(nodes.data(), nodes.size())));
    block.SetRecord(count++, record);
    block.DeleteDataRecord(record);
  }

  std::size_t count = 0;
};

std::vector<Point> PlacesOf(const QeltaMesh& mesh) {
  std::vector<Point> places(mesh.GetNodes().GetCount());
  mesh.VisitNodes([&](std::size_t first, std::size_t count, const double* xyz) {
    for (std::size_t i = 0; i < 3 * count; ++i) places[first + i / 3][i % 3] = xyz[i];
  });
  return places;
}

std::size_t CornersOf(int type) {
  static const std::map<int, std::size_t> kCorners = {{10, 4}, {24, 4}, {12, 8},
                                                      {25, 8}, {13, 6}, {26, 6}};
  const auto found = kCorners.find(type);
  return found == kCorners.end() ? 0 : found->second;
}

using Face = std::set<std::size_t>;

// All corners in the plane of three of them, if no corner is on one side of it.
Face FaceThrough(const std::vector<std::size_t>& corners, const std::vector<Point>& places,
                 const std::array<std::size_t, 3>& three) {
  const auto& [p, q, r] = three;
  Point a, b;
  for (std::size_t k = 0; k < 3; ++k) {
    a[k] = places[q][k] - places[p][k];
    b[k] = places[r][k] - places[p][k];
  }
  const Point normal = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                        a[0] * b[1] - a[1] * b[0]};
  Face face;
  bool isAbove = false, isBelow = false;
  for (const std::size_t corner : corners) {
    double height = 0;
    for (std::size_t k = 0; k < 3; ++k) height += normal[k] * (places[corner][k] - places[p][k]);
    if (std::abs(height) < 1e-6) face.insert(corner);
    isAbove = isAbove || height > 1e-6;
    isBelow = isBelow || height < -1e-6;
  }
  return isAbove && isBelow ? Face() : face;
}

// The sides of the convex hull of a cell's corners.
std::set<Face> NaiveFaces(const QeltaMesh::Cell& cell, const std::vector<Point>& places) {
  const std::vector<std::size_t> corners(
      cell.nodes.begin(),
      cell.nodes.begin() + static_cast<std::ptrdiff_t>(CornersOf(cell.vtkType)));
  std::set<Face> faces;
  for (const std::size_t p : corners) {
    for (const std::size_t q : corners) {
      for (const std::size_t r : corners) {
        if (p < q && q < r) faces.insert(FaceThrough(corners, places, {p, q, r}));
      }
    }
  }
  faces.erase(Face());
  return faces;
}

// The faces of one cell only, with this cell.
std::map<Face, std::size_t> NaiveSurface(const QeltaMesh& mesh, const std::vector<Point>& places) {
  std::map<Face, std::vector<std::size_t>> owners;
  mesh.VisitCells([&](const QeltaMesh::Cell& cell) {
    for (const Face& face : NaiveFaces(cell, places)) owners[face].push_back(cell.position);
  });
  std::map<Face, std::size_t> surface;
  for (const auto& [face, cells] : owners) {
    if (cells.size() == 1) surface.emplace(face, cells.front());
  }
  return surface;
}

struct Shape {
  int type;
  std::size_t cell;
  std::vector<std::size_t> nodes;  // positions in the mesh
};

std::vector<Shape> ShapesOf(const QeltaSurface& surface) {
  static const std::map<int, std::size_t> kNodes = {{1, 1},  {3, 2}, {21, 3}, {5, 3},
                                                    {22, 6}, {9, 4}, {23, 8}};
  std::vector<Shape> shapes;
  std::size_t next = 0;
  for (std::size_t i = 0; i < surface.types.size(); ++i) {
    Shape shape{surface.types[i], surface.cellPositions.at(surface.cells[i]), {}};
    for (std::size_t k = 0; k < kNodes.at(shape.type); ++k) {
      shape.nodes.push_back(surface.nodePositions.at(surface.nodes.at(next++)));
    }
    shapes.push_back(shape);
  }
  EXPECT_EQ(next, surface.nodes.size());
  return shapes;
}

TEST(Surface, IsThoseFacesThatOccurOnce) {
  std::mt19937 random(7);
  const auto at = [](int x, int y, int z) { return x + 4 * (y + 4 * z); };
  for (int run = 0; run < 10; ++run) {
    Database database;
    for (int i = 0; i < 64; ++i) {
      database.SetNode(static_cast<std::size_t>(i),
                       {double(i % 4), double(i / 4 % 4), double(i / 16)});
    }
    for (int i = 0; i < 27; ++i) {
      const int x = i % 3, y = i / 3 % 3, z = i / 9;
      const std::vector<int> n = {
          at(x, y, z),     at(x + 1, y, z),     at(x + 1, y + 1, z),     at(x, y + 1, z),
          at(x, y, z + 1), at(x + 1, y, z + 1), at(x + 1, y + 1, z + 1), at(x, y + 1, z + 1)};
      switch (random() % 4) {
        case 0:
          database.AddElement(12, n);
          break;
        case 1:
          database.AddElement(13, {n[0], n[1], n[2], n[4], n[5], n[6]});
          database.AddElement(13, {n[0], n[2], n[3], n[4], n[6], n[7]});
          break;
        case 2:
          database.AddElement(10, {n[0], n[1], n[2], n[5]});
          break;
        default:
          break;
      }
    }
    const QeltaMesh mesh(database, Key(ONF_NODE_COORDINATES));
    std::map<Face, std::size_t> found;
    for (const Shape& shape : ShapesOf(ExtractSurface(mesh))) {
      EXPECT_TRUE(found.emplace(Face(shape.nodes.begin(), shape.nodes.end()), shape.cell).second);
    }
    EXPECT_EQ(found, NaiveSurface(mesh, PlacesOf(mesh)));
  }
}

// Every element type of a solver, each apart from the others.
TEST(Surface, OfQuadraticCellsGoesAroundTheirMiddleNodes) {
  Database database;
  ImportFrd(QELTA_TEST_DATA "/elements.frd", database);
  const QeltaMesh mesh(database, Key(ONF_NODE_COORDINATES));
  const std::vector<Point> places = PlacesOf(mesh);
  const std::vector<Shape> shapes = ShapesOf(ExtractSurface(mesh));
  std::map<Face, std::size_t> found;
  std::vector<int> others;
  for (const Shape& shape : shapes) {
    const std::size_t count = shape.type == 5 || shape.type == 22 ? 3 : 4;
    const bool isFace = shape.type != 3 && shape.type != 21;
    if (!isFace) others.push_back(shape.type);
    for (std::size_t i = 0; isFace && i + count < shape.nodes.size(); ++i) {
      const Point& a = places[shape.nodes[i]];
      const Point& b = places[shape.nodes[(i + 1) % count]];
      const Point& middle = places[shape.nodes[count + i]];
      for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(middle[k], (a[k] + b[k]) / 2, 1e-6);
    }
    if (isFace) {
      const auto end = shape.nodes.begin() + static_cast<std::ptrdiff_t>(count);
      found.emplace(Face(shape.nodes.begin(), end), shape.cell);
    }
  }
  for (const auto& [face, cell] : NaiveSurface(mesh, places)) {
    const auto known = found.find(face);
    ASSERT_NE(known, found.end());
    EXPECT_EQ(known->second, cell);
    found.erase(known);
  }
  EXPECT_EQ(found.size(), 4u);  // the shells
  EXPECT_THAT(others, testing::UnorderedElementsAre(3, 21));
}

TEST(Surface, WithoutKnownCellsIsNodesOrNothing) {
  Database database;
  for (const std::size_t index : {2u, 5u, 9u}) database.SetNode(index, {1, 2, 3});
  const QeltaMesh nodes(database, Key(ONF_NODE_COORDINATES));
  EXPECT_THAT(ExtractSurface(nodes).types, ElementsAre(1, 1, 1));
  database.AddElement(42, {2, 5, 9});
  const QeltaSurface surface = ExtractSurface(QeltaMesh(database, Key(ONF_NODE_COORDINATES)));
  EXPECT_EQ(surface.unknownCells, 1u);
  EXPECT_THAT(surface.nodePositions, IsEmpty());
}

TEST(MeshFields, AreReadWhereTheyAreAskedFor) {
  Database database;
  for (const std::size_t index : {2u, 3u, 7u, 70000u}) database.SetNode(index, {1, 2, 3});
  FED_DataBlock& block = database.FetchDataBlock(Key(1, ONF_DISPLACEMENT), std::size_t{0});
  for (const std::size_t index : {0u, 3u, 70000u}) {
    const auto x = static_cast<double>(index);
    block.SetVector(index, Point{x, -x, 0.5}.data());
  }
  const QeltaMesh mesh(database, Key(ONF_NODE_COORDINATES));
  const std::vector<float> values = ReadAtPositions(block, mesh.GetNodes(), {0, 1, 3});
  const auto none = testing::IsNan();
  EXPECT_THAT(values, ElementsAre(none, 3, 70000, none, -3, -70000, none, 0.5, 0.5));
}

TEST(MeshFields, KeepFirstLastAndEvenlySpreadSteps) {
  struct Case {
    std::vector<std::uint64_t> bytes;
    std::uint64_t room;
    std::optional<std::vector<std::size_t>> kept;
  };
  using Steps = std::vector<std::size_t>;
  const Case cases[] = {{{}, 0, Steps{}},
                        {{5}, 5, Steps{0}},
                        {{5}, 4, {}},
                        {{5, 5}, 9, {}},
                        {{5, 1, 5}, 10, Steps{0, 2}},
                        {{1, 1, 1, 1, 1}, 3, Steps{0, 2, 4}},
                        {{1, 1, 1, 1, 1}, 9, Steps{0, 1, 2, 3, 4}},
                        {std::vector<std::uint64_t>(10, 1), 4, Steps{0, 3, 6, 9}}};
  for (const Case& one : cases) EXPECT_EQ(ChooseSteps(one.bytes, one.room), one.kept);
}

TEST(MeshFields, OfStepsThatAreLeftOutGo) {
  Database database;
  for (const std::size_t index : {0u, 1u}) database.SetNode(index, {1, 2, 3});
  const Point u = {1, 2, 3};
  const double t = 20;
  for (const int iteration : {1, 2, 3}) {
    database.FetchDataBlock(Key(iteration, ONF_DISPLACEMENT), std::size_t{0})
        .SetVector(0, u.data());
  }
  database.FetchDataBlock(Key(2, ONF_TEMPERATURE), std::size_t{0}).SetScalar(0, t);
  database.FetchDataBlock(Key(ONF_NODE_NORMAL), std::size_t{0}).SetVector(0, u.data());
  const QeltaMeshes meshes(database);
  QeltaMeshFields fields = FindMeshFields(database, meshes, database.FindBlocks({}));
  const auto summary = [&fields] {
    std::vector<std::string> texts;
    for (const QeltaMeshField& field : fields.fields.at(0)) {
      texts.push_back(field.name);
      for (const auto& block : field.blocks) {
        texts.back() += block.step ? " " + std::to_string(*block.step) : " always";
      }
    }
    return texts;
  };
  EXPECT_THAT(summary(), ElementsAre("NODE_NORMAL always", "DISPLACEMENT 0 1 2", "TEMPERATURE 1"));
  KeepSteps(fields, {0, 2});
  EXPECT_THAT(summary(), ElementsAre("NODE_NORMAL always", "DISPLACEMENT 0 1"));
  EXPECT_EQ(fields.steps.at(1).key.ToString(), "ITERATION=3");
}

}  // namespace
}  // namespace qelta::test
