#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "QeltaMesh.h"

namespace qelta {

/// What can be seen of a mesh: the faces that belong to one solid cell only, and all shell and line
/// cells. A face between a linear and a quadratic cell counts as one face of both. A mesh without
/// cells shows its nodes.
struct QeltaSurface {
  /// A shape for each face, shell, line or node, by the number of its VTK cell type: vertex 1, line
  /// 3 or 21, triangle 5 or 22, quadrangle 9 or 23.
  std::vector<std::uint8_t> types;
  std::vector<std::uint32_t> nodes;  ///< of one shape after another, in VTK's order: places below
  std::vector<std::uint32_t> cells;  ///< of each shape: the place below of the cell it belongs to

  std::vector<std::uint32_t> nodePositions;  ///< in the mesh, ascending: the nodes that are seen
  std::vector<std::uint32_t> cellPositions;  ///< likewise of the cells

  std::size_t unknownCells = 0;  ///< of types without a known shape; left out
};

/// Called with the cells that are done and those that there are; may throw to end the work.
using QeltaSurfaceProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

/// One pass over the cells. Memory for the surface and a bit for each node; while it works, also
/// for the faces whose second cell has not come yet.
QeltaSurface ExtractSurface(const QeltaMesh& mesh, const QeltaSurfaceProgress& progress = {});

}  // namespace qelta
