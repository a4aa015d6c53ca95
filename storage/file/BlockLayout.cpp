#include "BlockLayout.h"

#include <algorithm>

#include "ContentKind.h"
#include "FED_Failure.h"
#include "FED_OnfInfoPool.h"
#include "OnfFormatStringTool.h"

namespace qelta {
namespace {

constexpr std::uint64_t kMaxSpan = std::uint64_t{1} << 31;  // highest index + 1

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

bool IsBefore(const StoredChunk& a, const StoredChunk& b) {
  return a.part != b.part ? a.part < b.part : a.number < b.number;
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

std::size_t ChunkSizeFor(Part part, std::size_t recordSize) {
  return part == Part::RECORDS ? recordSize << ShiftFor(recordSize) : kChunkBytes;
}

const char* FindFault(const BlockRow& row, std::vector<StoredChunk>& chunks) {
  if (row.records > row.span || row.span > kMaxSpan || row.handles > kMaxHandle) {
    return "its counts of records make no sense";
  }
  if (!UnpackChunks(row.chunks, chunks)) return "its list of chunks makes no sense";
  const std::size_t recordSize = RecordSizeOf(row.format);
  for (const StoredChunk& chunk : chunks) {
    if (chunk.part > Part::CONTENTS) return "one of its chunks is no part of a block";
    if (chunk.extent.length > ChunkSizeFor(chunk.part, recordSize)) {
      return "one of its chunks is too long";
    }
  }
  if (!std::is_sorted(chunks.begin(), chunks.end(), IsBefore)) {
    std::sort(chunks.begin(), chunks.end(), IsBefore);
  }
  const auto twice = std::adjacent_find(
      chunks.begin(), chunks.end(),
      [](const StoredChunk& a, const StoredChunk& b) { return !IsBefore(a, b); });
  return twice == chunks.end() ? nullptr : "it has a chunk twice";
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
