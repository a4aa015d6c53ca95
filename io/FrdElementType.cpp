#include "FrdElementType.h"

#include <algorithm>

namespace qelta {
namespace {

using Order = std::array<std::uint8_t, FrdElementType::kMaxNodes>;

constexpr Order kSame = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
// The file has the vertical mid-edge nodes before those of the top, VTK behind them.
constexpr Order kHex20 = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15};
constexpr Order kWedge15 = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11};

constexpr std::array<FrdElementType, 12> kTypes = {{{1, "hex8", 8, 12, kSame},
                                                    {2, "wedge6", 6, 13, kSame},
                                                    {3, "tet4", 4, 10, kSame},
                                                    {4, "hex20", 20, 25, kHex20},
                                                    {5, "wedge15", 15, 26, kWedge15},
                                                    {6, "tet10", 10, 24, kSame},
                                                    {7, "tri3", 3, 5, kSame},
                                                    {8, "tri6", 6, 22, kSame},
                                                    {9, "quad4", 4, 9, kSame},
                                                    {10, "quad8", 8, 23, kSame},
                                                    {11, "line2", 2, 3, kSame},
                                                    {12, "line3", 3, 21, kSame}}};

template <class Test>
const FrdElementType* FindType(Test test) {
  const auto found = std::find_if(kTypes.begin(), kTypes.end(), test);
  return found == kTypes.end() ? nullptr : &*found;
}

}  // namespace

const FrdElementType* FindFrdElementType(std::int32_t number) {
  return FindType([number](const FrdElementType& type) { return type.number == number; });
}

const FrdElementType* FindFrdElementTypeOfVtkCell(std::int32_t vtkCell) {
  return FindType([vtkCell](const FrdElementType& type) { return type.vtkCell == vtkCell; });
}

}  // namespace qelta
