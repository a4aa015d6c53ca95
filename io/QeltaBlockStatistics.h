#pragma once

#include <FED_DataBlock.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "QeltaQuantities.h"

namespace qelta {

/// What the values of one component of a block are like. NaN counts apart and for nothing else.
struct QeltaStatistics {
  std::string title;  ///< "DISPLACEMENT.x", "STRESS.mises"
  std::uint64_t count = 0;
  std::uint64_t notANumber = 0;
  double lowest = 0;  ///< this and all that follow: meaningless when count is 0
  double highest = 0;
  double mean = 0;
  double norm = 0;           ///< root of the sum of squares
  std::size_t lowestAt = 0;  ///< index of the first record with this value
  std::size_t highestAt = 0;
};

/// The statistics of every one of the block's QeltaQuantities, or of those given, which must be the
/// block's. One pass over the block.
std::vector<QeltaStatistics> ComputeStatistics(const FED_DataBlock& block);
std::vector<QeltaStatistics> ComputeStatistics(const FED_DataBlock& block,
                                               const QeltaQuantities& quantities);

}  // namespace qelta
