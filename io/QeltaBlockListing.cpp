#include "QeltaBlockListing.h"

#include <BlockMetaData.h>
#include <QeltaBulkAccess.h>

namespace qelta {
namespace {

const FED_OnfMetaData& KindOf(const QeltaCountingSink::Block& block) {
  if (!block.key.Has(FED_DataDescriptor::ONF)) return FED_OnfInfoPool::FetchOnfInfo(block.format);
  return FED_OnfInfoPool::GetOnfInfo(
      static_cast<FED_OnfId>(block.key.GetInteger(FED_DataDescriptor::ONF)));
}

}  // namespace

const std::string& QeltaBlockInfo::KindName() const {
  static const std::string kCustom = "(custom)";
  return key.Has(FED_DataDescriptor::ONF) ? kind->name : kCustom;
}

QeltaBlockInfo DescribeBlock(const FED_DataDescriptor& key, const FED_DataBlock& block) {
  FED_IntSetIntvl<int> runs;
  QeltaBulkAccess::PresentRuns(block, runs);
  return {key, &MetaDataOf(block), runs.Size(), runs.Size() * block.GetRecordSize()};
}

QeltaBlockInfo DescribeBlock(const QeltaCountingSink::Block& block) {
  const FED_OnfMetaData& kind = KindOf(block);
  return {block.key, &kind, block.recordCount, block.recordCount * kind.recordSize};
}

std::vector<QeltaBlockInfo> DescribeBlocks(const FED_Database& database,
                                           const std::vector<FED_DataDescriptor>& keys) {
  std::vector<QeltaBlockInfo> blocks;
  blocks.reserve(keys.size());
  for (const FED_DataDescriptor& key : keys) {
    blocks.push_back(DescribeBlock(key, database.GetDataBlock(key)));
  }
  return blocks;
}

}  // namespace qelta
