#pragma once

#include <FED_DataDescriptor.h>

#include <string>

#include "FrdEvents.h"
#include "FrdFieldMap.h"

namespace qelta {

/// Values of ANALYSIS.
enum FrdAnalysis {
  FRD_STATIC = 0,
  FRD_TIME_STEP = 1,
  FRD_MODAL = 2,
  FRD_OTHER = 3,
  FRD_BUCKLING = 4,
  FRD_STEADY_STATE = 5
};

FrdAnalysis GetFrdAnalysis(const FrdFrame& frame);

/// The fields that all blocks of a frame share: LOADCASE, INCREMENT, SUBSTEP, STATE and ANALYSIS.
/// What the frame does not tell, or what is outside the field's valid range, stays unspecified.
FED_DataDescriptor MakeFrdFrameKey(const FrdFrame& frame);

/// The key of one block of a dataset.
FED_DataDescriptor MakeFrdPartKey(const FrdDataset& dataset, const FrdFieldPart& part);

/// What the value of the dataset's frame is: a time, a frequency or a buckling factor.
FED_OnfId GetFrdValueKind(const FrdDataset& dataset);

/// "static", "time steps", "modal" ...
const char* GetFrdAnalysisName(FrdAnalysis analysis);

}  // namespace qelta
