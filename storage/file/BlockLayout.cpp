#include "BlockLayout.h"

#include "FED_Failure.h"
#include "FED_OnfInfoPool.h"
#include "OnfFormatStringTool.h"

namespace qelta {
namespace {

bool IsFormat(const std::string& format) {
  try {
    RecordSizeOf(format);
    return true;
  } catch (const FED_Failure&) {
    return false;
  }
}

bool IsHandle(BlockDataType type, FED_IdType idType) {
  switch (type) {
    case BLOCK_DATA_STRING:
      return idType == ID_TYPE_RECORD_INDEX;
    case BLOCK_DATA_INT_SET:
    case BLOCK_DATA_INT_LIST:
    case BLOCK_DATA_DOUBLE_LIST:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::size_t RecordSizeOf(const std::string& format) {
  int size = 0;
  std::vector<BlockDataType> types;
  OnfFormatStringTool::GetFormatSizeInformation(format.c_str(), size, types);
  return static_cast<std::size_t>(size);
}

unsigned ShiftFor(std::size_t recordSize) {
  unsigned shift = 6;
  while (shift < 18 && (recordSize << (shift + 1)) <= kChunkBytes) ++shift;
  return shift;
}

bool IsKnownHere(const FED_DataDescriptor& descriptor, const std::string& format) {
  if (!descriptor.Has(FED_DataDescriptor::ONF)) return IsFormat(format);
  const int kind = descriptor.GetInteger(FED_DataDescriptor::ONF);
  return FED_OnfInfoPool::ExistsOnfBlock(kind) &&
         FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(kind)).format == format;
}

std::vector<std::size_t> HandlePlaces(const FED_DataDescriptor& descriptor,
                                      const std::string& format) {
  const bool isCatalogued = descriptor.Has(FED_DataDescriptor::ONF);
  const FED_OnfMetaData& kind = isCatalogued ? FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(
                                                   descriptor.GetInteger(FED_DataDescriptor::ONF)))
                                             : FED_OnfInfoPool::FetchOnfInfo(format);
  std::vector<std::size_t> places;
  std::size_t place = 0;
  for (std::size_t i = 0; i < kind.dataTypes.size(); ++i) {
    if (IsHandle(kind.dataTypes[i], kind.idTypes[i + 1])) places.push_back(place);
    place += static_cast<std::size_t>(OnfFormatStringTool::GetFieldSize(kind.dataTypes[i]));
  }
  return places;
}

}  // namespace qelta
