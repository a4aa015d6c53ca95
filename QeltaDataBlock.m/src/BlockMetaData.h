#pragma once

#include "FED_DataBlock.h"
#include "FED_OnfInfoPool.h"

namespace qelta {

/// The meta data of a block: that of its kind, or of its format when it is a custom block.
inline const FED_OnfMetaData& MetaDataOf(const FED_DataBlock& block) {
  const FED_DataDescriptor& key = block.GetDescriptor();
  if (!key.Has(FED_DataDescriptor::ONF)) return FED_OnfInfoPool::FetchOnfInfo(block.GetFormat());
  return FED_OnfInfoPool::GetOnfInfo(
      static_cast<FED_OnfId>(key.GetInteger(FED_DataDescriptor::ONF)));
}

}  // namespace qelta
