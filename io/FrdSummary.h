#pragma once

#include <FED_IntSetIntvl.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "FrdKeys.h"
#include "FrdReader.h"
#include "QeltaCountingSink.h"

namespace qelta {

/// The frames of one kind of analysis in one step.
struct FrdStepSummary {
  std::optional<std::int32_t> step;
  FrdAnalysis analysis = FRD_STATIC;
  FED_IntSetIntvl<int> frames;
  FED_IntSetIntvl<int> increments;
  FED_IntSetIntvl<int> modes;
  double lowestValue = 0;  ///< of the frames: times, frequencies or buckling factors
  double highestValue = 0;
};

/// What a result file holds, without any of its records.
struct FrdFileSummary {
  std::string model;
  std::string heading;
  std::map<std::string, std::string> headers;  ///< "DATE", "PGM" ... and their texts
  std::vector<std::string> materials;
  std::uint64_t nodes = 0;
  std::uint64_t nodesWithoutCoordinates = 0;      ///< have results but stand in no node table
  std::map<std::string, std::uint64_t> elements;  ///< by the name of their type
  std::vector<FrdStepSummary> steps;
  std::vector<QeltaCountingSink::Block> blocks;  ///< that an import would make, in its order
  bool isBinary = false;
  bool isComplete = false;  ///< has its end record
};

/// Reads the whole file and keeps no records.
FrdFileSummary SummarizeFrd(const std::filesystem::path& path, const FrdReadOptions& options = {});

}  // namespace qelta
