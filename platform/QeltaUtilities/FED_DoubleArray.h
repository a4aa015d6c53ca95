#pragma once

#include <cstddef>
#include <type_traits>

#include "QeltaArray.h"

/// A list of doubles, laid out as three 64-bit words: `count`, `reserved`, `data`. See QeltaArray
/// for the members and operations.
struct FED_DoubleArray : QeltaArray<double> {
  using QeltaArray<double>::QeltaArray;
};

static_assert(sizeof(FED_DoubleArray) == 24 && std::is_standard_layout_v<FED_DoubleArray>,
              "the layout is shared with Fortran programs");
