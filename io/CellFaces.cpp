#include "CellFaces.h"

#include <algorithm>
#include <map>

namespace qelta {
namespace {

using Nodes = std::vector<std::uint8_t>;

// The mid-edge nodes of a quadratic cell follow its corners in the order of the edges.
struct Solid {
  std::int32_t linearType;
  std::int32_t quadraticType;
  std::size_t corners;
  std::vector<Nodes> faces;
  std::vector<Nodes> edges;
};

const Solid kSolids[] = {
    {10,
     24,
     4,
     {{0, 1, 3}, {1, 2, 3}, {2, 0, 3}, {0, 2, 1}},
     {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}}},
    {12,
     25,
     8,
     {{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {3, 7, 6, 2}, {0, 3, 2, 1}, {4, 5, 6, 7}},
     {{0, 1},
      {1, 2},
      {2, 3},
      {3, 0},
      {4, 5},
      {5, 6},
      {6, 7},
      {7, 4},
      {0, 4},
      {1, 5},
      {2, 6},
      {3, 7}}},
    {13,
     26,
     6,
     {{0, 1, 2}, {3, 5, 4}, {0, 3, 4, 1}, {1, 4, 5, 2}, {2, 5, 3, 0}},
     {{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5}, {5, 3}, {0, 3}, {1, 4}, {2, 5}}},
};

std::uint8_t MiddleOf(const Solid& solid, std::uint8_t a, std::uint8_t b) {
  const auto edge = std::find_if(
      solid.edges.begin(), solid.edges.end(),
      [a, b](const Nodes& nodes) { return std::minmax(a, b) == std::minmax(nodes[0], nodes[1]); });
  return static_cast<std::uint8_t>(solid.corners +
                                   static_cast<std::size_t>(edge - solid.edges.begin()));
}

CellFace Quadratic(const Solid& solid, const Nodes& corners) {
  CellFace face{static_cast<std::uint8_t>(corners.size() == 3 ? 22 : 23), corners.size(), corners};
  for (std::size_t i = 0; i < corners.size(); ++i) {
    face.nodes.push_back(MiddleOf(solid, corners[i], corners[(i + 1) % corners.size()]));
  }
  return face;
}

using Table = std::map<std::int32_t, std::vector<CellFace>>;

Table MakeTable() {
  Table table;
  for (const Solid& solid : kSolids) {
    for (const Nodes& corners : solid.faces) {
      const auto type = static_cast<std::uint8_t>(corners.size() == 3 ? 5 : 9);
      table[solid.linearType].push_back({type, corners.size(), corners});
      table[solid.quadraticType].push_back(Quadratic(solid, corners));
    }
  }
  return table;
}

const Table& GetTable() {
  static const Table kTable = MakeTable();
  return kTable;
}

}  // namespace

bool IsSolid(std::int32_t vtkType) { return GetTable().count(vtkType) != 0; }

const std::vector<CellFace>& FacesOf(std::int32_t vtkType) { return GetTable().at(vtkType); }

}  // namespace qelta
