#pragma once

#include <FED_Database.h>

#include <optional>
#include <string>
#include <vector>

namespace qelta {

/// What blocks of one moment of a run have in common.
struct QeltaStep {
  FED_DataDescriptor key;  ///< ITERATION, STATE, LOADCASE, SUBSTEP, ANALYSIS and INCREMENT alone
  /// Time, frequency or buckling factor of the step, where the database has it.
  std::optional<double> value;
  std::string valueName;  ///< "time", "frequency", "buckling factor", or ""
  std::vector<FED_DataDescriptor> blocks;
};

struct QeltaSteps {
  std::vector<QeltaStep> steps;  ///< in the order of their keys
  /// Blocks whose key specifies none of these fields: they hold at every step.
  std::vector<FED_DataDescriptor> constant;
};

/// Groups keys of blocks of a database by their step. A block whose key leaves out some of these
/// fields holds at every step that agrees with the others: a density of ITERATION=3 at both
/// ITERATION=3/LOADCASE=1 and ITERATION=3/LOADCASE=2.
QeltaSteps FindSteps(const FED_Database& database, const std::vector<FED_DataDescriptor>& keys);

/// Whether a block holds at a step: every field of a step that its key specifies agrees.
bool HoldsAt(const FED_DataDescriptor& block, const FED_DataDescriptor& step);

/// A number for each step that grows from step to step: the values of the steps when they are of
/// one kind and grow, else the iterations, increments or load cases if one of these alone tells the
/// steps apart, else 0, 1, 2 and so on.
struct QeltaStepScale {
  std::string name;  ///< "time", "ITERATION", "step" ...
  std::vector<double> values;
};
QeltaStepScale ScaleOf(const std::vector<QeltaStep>& steps);

/// Names for the values of blocks in ascending order, each but once within a step: the LABEL or
/// else the kind, followed by what tells apart, such as "_imaginary", "_phase" or "_layer2".
std::vector<std::string> NameBlocks(const std::vector<FED_DataDescriptor>& keys);

}  // namespace qelta
