#include "QeltaSurface.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <unordered_map>

#include "CellFaces.h"
#include "FrdElementType.h"

namespace qelta {
namespace {

constexpr std::uint8_t kVertex = 1;
constexpr std::uint64_t kCellsBetweenReports = 4096;

// The corners of a face in ascending order.
using Corners = std::array<std::uint32_t, 4>;

struct HashCorners {
  std::size_t operator()(const Corners& corners) const {
    std::uint64_t hash = 0;
    for (const std::uint32_t corner : corners) {
      hash = (hash ^ corner) * 0x9e3779b97f4a7c15U;
      hash ^= hash >> 32U;
    }
    return hash;
  }
};

// Where a face comes from; its nodes are positions in the mesh.
struct Shape {
  std::uint32_t cell;
  std::uint8_t order;
  std::uint8_t type;
  std::uint8_t count;
  std::array<std::uint32_t, 8> nodes;
};

Corners CornersOf(const Shape& shape, std::size_t count) {
  Corners corners;
  corners.fill(UINT32_MAX);
  std::copy_n(shape.nodes.begin(), count, corners.begin());
  std::sort(corners.begin(), corners.end());
  return corners;
}

class SurfaceMaker {
 public:
  void Add(const QeltaMesh::Cell& cell) {
    if (IsSolid(cell.vtkType)) {
      AddFaces(cell);
    } else if (FindFrdElementTypeOfVtkCell(cell.vtkType) != nullptr) {
      m_Shapes.push_back(WholeCell(cell));
    } else {
      ++m_Result.unknownCells;
    }
  }

  QeltaSurface Finish(std::size_t nodeCount) {
    for (const auto& face : m_Open) m_Shapes.push_back(face.second);
    m_Open.clear();
    std::sort(m_Shapes.begin(), m_Shapes.end(), [](const Shape& a, const Shape& b) {
      return std::tie(a.cell, a.order) < std::tie(b.cell, b.order);
    });
    FindNodes(nodeCount);
    for (const Shape& shape : m_Shapes) Store(shape);
    return std::move(m_Result);
  }

 private:
  static Shape WholeCell(const QeltaMesh::Cell& cell) {
    Shape shape{static_cast<std::uint32_t>(cell.position),
                0,
                static_cast<std::uint8_t>(cell.vtkType),
                static_cast<std::uint8_t>(cell.nodes.size()),
                {}};
    std::transform(cell.nodes.begin(), cell.nodes.end(), shape.nodes.begin(),
                   [](std::int64_t node) { return static_cast<std::uint32_t>(node); });
    return shape;
  }

  void AddFaces(const QeltaMesh::Cell& cell) {
    std::uint8_t order = 0;
    for (const CellFace& face : FacesOf(cell.vtkType)) {
      Shape shape{static_cast<std::uint32_t>(cell.position),
                  order++,
                  face.vtkType,
                  static_cast<std::uint8_t>(face.nodes.size()),
                  {}};
      std::transform(
          face.nodes.begin(), face.nodes.end(), shape.nodes.begin(),
          [&cell](std::uint8_t node) { return static_cast<std::uint32_t>(cell.nodes[node]); });
      const auto [known, isNew] = m_Open.emplace(CornersOf(shape, face.corners), shape);
      if (!isNew) m_Open.erase(known);
    }
  }

  void FindNodes(std::size_t nodeCount) {
    std::vector<bool> isSeen(nodeCount);
    for (const Shape& shape : m_Shapes) {
      for (std::size_t i = 0; i < shape.count; ++i) isSeen[shape.nodes[i]] = true;
    }
    for (std::size_t node = 0; node < nodeCount; ++node) {
      if (isSeen[node]) m_Result.nodePositions.push_back(static_cast<std::uint32_t>(node));
    }
  }

  // The shapes come in the order of their cells.
  void Store(const Shape& shape) {
    const auto& seen = m_Result.nodePositions;
    m_Result.types.push_back(shape.type);
    for (std::size_t i = 0; i < shape.count; ++i) {
      const auto place = std::lower_bound(seen.begin(), seen.end(), shape.nodes[i]);
      m_Result.nodes.push_back(static_cast<std::uint32_t>(place - seen.begin()));
    }
    auto& cells = m_Result.cellPositions;
    if (cells.empty() || cells.back() != shape.cell) cells.push_back(shape.cell);
    m_Result.cells.push_back(static_cast<std::uint32_t>(cells.size() - 1));
  }

  std::unordered_map<Corners, Shape, HashCorners> m_Open;  // faces of one cell so far
  std::vector<Shape> m_Shapes;
  QeltaSurface m_Result;
};

QeltaSurface NodesOnly(std::size_t nodeCount) {
  QeltaSurface surface;
  surface.types.assign(nodeCount, kVertex);
  surface.nodePositions.resize(nodeCount);
  std::iota(surface.nodePositions.begin(), surface.nodePositions.end(), 0U);
  surface.nodes = surface.nodePositions;
  surface.cells.assign(nodeCount, 0);
  return surface;
}

}  // namespace

QeltaSurface ExtractSurface(const QeltaMesh& mesh, const QeltaSurfaceProgress& progress) {
  const std::size_t cellCount = mesh.GetCells().GetCount();
  if (cellCount == 0) return NodesOnly(mesh.GetNodes().GetCount());
  SurfaceMaker maker;
  mesh.VisitCells([&](const QeltaMesh::Cell& cell) {
    if (progress && cell.position % kCellsBetweenReports == 0) progress(cell.position, cellCount);
    maker.Add(cell);
  });
  return maker.Finish(mesh.GetNodes().GetCount());
}

}  // namespace qelta
