#pragma once

#include <FED_Database.h>
#include <FED_OnfMetaData.h>

#include <cstdint>
#include <string>
#include <vector>

#include "QeltaCountingSink.h"

namespace qelta {

/// What a list of blocks says about one of them.
struct QeltaBlockInfo {
  FED_DataDescriptor key;
  const FED_OnfMetaData* kind;  ///< of the catalogue, or of the format of a custom block
  std::uint64_t records;
  std::uint64_t bytes;  ///< of the records; texts and lists of the block are not counted

  /// "DISPLACEMENT"; "(custom)" for a custom block.
  const std::string& KindName() const;
};

QeltaBlockInfo DescribeBlock(const FED_DataDescriptor& key, const FED_DataBlock& block);
QeltaBlockInfo DescribeBlock(const QeltaCountingSink::Block& block);

/// One entry for each key, in their order; fails when one has no block.
std::vector<QeltaBlockInfo> DescribeBlocks(const FED_Database& database,
                                           const std::vector<FED_DataDescriptor>& keys);

}  // namespace qelta
