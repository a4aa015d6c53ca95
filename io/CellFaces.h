#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qelta {

/// The faces of a cell as shapes of two dimensions.
struct CellFace {
  std::uint8_t vtkType;             ///< 5 or 22, 9 or 23
  std::size_t corners;              ///< how many of the nodes are corners, which stand first
  std::vector<std::uint8_t> nodes;  ///< of the cell
};

/// Whether cells of this VTK type have faces: they are solids.
bool IsSolid(std::int32_t vtkType);

/// The faces of a solid, in a fixed order.
const std::vector<CellFace>& FacesOf(std::int32_t vtkType);

}  // namespace qelta
