#pragma once

#include <cstdint>

/// Groups of block kinds; each is a range of numbers in the catalogue.
enum FED_OnfCategoryId : std::int32_t {
  ONF_CATEGORY_GEOMETRY = 1,
  ONF_CATEGORY_NODAL = 2,
  ONF_CATEGORY_ELEMENT = 3,
  ONF_CATEGORY_GLOBAL = 4,
  ONF_CATEGORY_OPTIMISATION = 5,
  ONF_CATEGORY_ACOUSTICS = 6
};
