#pragma once

#include <FED_OnfId.h>

#include <cstddef>
#include <string>
#include <vector>

#include "FrdEvents.h"

namespace qelta {

/// Values of SUB_LEVEL, for the parts of complex and filtered results; plain values and real parts
/// leave it unspecified.
enum FrdSubLevel {
  FRD_IMAGINARY_PART = 1,
  FRD_AMPLITUDE = 2,
  FRD_PHASE = 3,  ///< in degrees
  FRD_FILTERED = 4
};

/// One block that the components of a dataset make.
struct FrdFieldPart {
  FED_OnfId kind;              ///< 0: a custom block
  std::string format;          ///< record format of a custom block, else empty
  std::size_t first;           ///< component of the dataset, from 0
  std::size_t count;           ///< of the components, which fill the record one after another
  int layer = 0;               ///< 0: leave it unspecified
  int subLevel = 0;            ///< likewise
  std::string objective = {};  ///< likewise when empty
};

/// The blocks that a dataset becomes: a kind of the catalogue for a known name with the components
/// that belong to it, else a custom block. Every component goes into exactly one part.
std::vector<FrdFieldPart> MapFrdDataset(const FrdDataset& dataset);

}  // namespace qelta
