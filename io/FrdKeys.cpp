#include "FrdKeys.h"

#include <FED_IdType.h>

#include <optional>

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

void SetIfValid(Key& key, Key::ResultIndex field, std::optional<std::int32_t> value) {
  const Key::NameAndType& range = Key::RD_NAME_TYPE_ITEMS[field];
  if (value && range.lowest <= *value && *value <= range.highest) key.SetInteger(field, *value);
}

void SetIfGiven(Key& key, Key::ResultIndex field, int value) {
  if (value != 0) key.SetInteger(field, value);
}

// Displacements of a mode have no length of their own. A buckling step begins with the
// displacements under the load itself, at factor 0.
bool IsModeShape(const FrdDataset& dataset, const FrdFieldPart& part) {
  if (part.kind != ONF_DISPLACEMENT) return false;
  const FrdAnalysis analysis = GetFrdAnalysis(dataset.frame);
  return analysis == FRD_MODAL || (analysis == FRD_BUCKLING && dataset.frame.value != 0.0);
}

}  // namespace

FrdAnalysis GetFrdAnalysis(const FrdFrame& frame) {
  switch (frame.type) {
    case 0:
      return FRD_STATIC;
    // Time steps count their increments from 1, steady states have none.
    case 1:
      return frame.increment == 0 ? FRD_STEADY_STATE : FRD_TIME_STEP;
    case 2:
      return FRD_MODAL;
    case 4:
      return FRD_BUCKLING;
    default:
      return FRD_OTHER;
  }
}

FED_DataDescriptor MakeFrdFrameKey(const FrdFrame& frame) {
  Key key;
  SetIfValid(key, Key::LOADCASE, frame.step);
  SetIfValid(key, Key::INCREMENT, frame.increment);
  SetIfValid(key, Key::SUBSTEP, frame.number);
  SetIfValid(key, Key::STATE, frame.mode);
  key.SetInteger(Key::ANALYSIS, GetFrdAnalysis(frame));
  return key;
}

FED_DataDescriptor MakeFrdPartKey(const FrdDataset& dataset, const FrdFieldPart& part) {
  Key key = MakeFrdFrameKey(dataset.frame);
  key.SetString(Key::LABEL, dataset.name);
  if (part.kind == 0) {
    key.SetInteger(Key::ID_TYPE, ID_TYPE_NODE);
  } else {
    key.SetInteger(Key::ONF, IsModeShape(dataset, part) ? ONF_MODE_SHAPE : part.kind);
  }
  SetIfGiven(key, Key::LAYER, part.layer);
  SetIfGiven(key, Key::SUB_LEVEL, part.subLevel);
  if (!part.objective.empty()) key.SetString(Key::OBJECTIVE_ID, part.objective);
  return key;
}

FED_OnfId GetFrdValueKind(const FrdDataset& dataset) {
  switch (GetFrdAnalysis(dataset.frame)) {
    case FRD_MODAL:
    case FRD_STEADY_STATE:
      return ONF_FRAME_FREQUENCY;
    case FRD_BUCKLING:
      return ONF_BUCKLING_FACTOR;
    case FRD_OTHER:
      return dataset.name == "SENFREQ" ? ONF_FRAME_FREQUENCY : ONF_FRAME_TIME;
    case FRD_STATIC:
    case FRD_TIME_STEP:
      break;
  }
  return ONF_FRAME_TIME;
}

const char* GetFrdAnalysisName(FrdAnalysis analysis) {
  switch (analysis) {
    case FRD_STATIC:
      return "static";
    case FRD_TIME_STEP:
      return "time steps";
    case FRD_MODAL:
      return "modal";
    case FRD_OTHER:
      return "other";
    case FRD_BUCKLING:
      return "buckling";
    case FRD_STEADY_STATE:
      return "steady state";
  }
  return "";
}

}  // namespace qelta
