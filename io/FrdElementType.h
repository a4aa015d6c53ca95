#pragma once

#include <array>
#include <cstdint>

namespace qelta {

/// One of the twelve element types of a .frd file.
struct FrdElementType {
  static constexpr int kMaxNodes = 20;

  std::int32_t number;  ///< as in the file, 1 to 12
  const char* name;     ///< "hex20"
  int nodeCount;
  std::int32_t vtkCell;  ///< number of the VTK cell type
  /// Node i of the VTK cell is node fileNode[i] of the element (both from 0).
  std::array<std::uint8_t, kMaxNodes> fileNode;
};

/// The type of that number, or null when there is none.
const FrdElementType* FindFrdElementType(std::int32_t number);

/// The type with that VTK cell number, or null when there is none.
const FrdElementType* FindFrdElementTypeOfVtkCell(std::int32_t vtkCell);

}  // namespace qelta
