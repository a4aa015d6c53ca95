#pragma once

#include <cstddef>
#include <type_traits>

#include "QeltaArray.h"

/// A list of integers, laid out as three 64-bit words: `count`, `reserved`, `data`. See QeltaArray
/// for the members and operations.
struct FED_IntArray : QeltaArray<int> {
  using QeltaArray<int>::QeltaArray;
};

static_assert(sizeof(FED_IntArray) == 24 && std::is_standard_layout_v<FED_IntArray>,
              "the layout is shared with Fortran programs");
