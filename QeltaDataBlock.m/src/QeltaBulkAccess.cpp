#include "QeltaBulkAccess.h"

#include <cstdint>
#include <cstring>

#include "FED_Failure.h"
#include "FED_RecordRuns.h"
#include "OnfFormatStringTool.h"
#include "RecordCursor.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaDataBlock|QeltaBulkAccess";

}  // namespace

QeltaBulkAccess::FieldPlace QeltaBulkAccess::PlaceOf(const FED_DataBlock& block,
                                                     std::size_t field) {
  const std::vector<BlockDataType>& types = block.GetDataTypes();
  if (field < 1 || field > types.size()) {
    FED_Failure::Throw("130000000001", kLocation, "Block %s has no field %Iu: it has %Iu fields.",
                       block.GetDescriptor().ToString().c_str(), static_cast<std::uint64_t>(field),
                       static_cast<std::uint64_t>(types.size()));
  }
  FieldPlace place{0, 0};
  for (std::size_t i = 1; i <= field; ++i) {
    place.offset += place.size;
    place.size = static_cast<std::size_t>(OnfFormatStringTool::GetFieldSize(types[i - 1]));
  }
  return place;
}

void QeltaBulkAccess::RequireRange(const FED_DataBlock& block, std::size_t first,
                                   std::size_t count) {
  // No sums here: they could pass the end of std::size_t.
  if (count == 0 || (first <= MAX_INDEX && count - 1 <= MAX_INDEX - first)) return;
  FED_Failure::Throw(
      "130000000002", kLocation,
      "Record index %Iu (%Iu records from there) of block %s is beyond the highest index %Iu.",
      static_cast<std::uint64_t>(first), static_cast<std::uint64_t>(count),
      block.GetDescriptor().ToString().c_str(), static_cast<std::uint64_t>(MAX_INDEX));
}

void QeltaBulkAccess::ReadRun(const FED_DataBlock& block, std::size_t first, std::size_t count,
                              void* records) {
  if (const auto* runs = dynamic_cast<const FED_RecordRuns*>(&block)) {
    runs->ReadRun(first, count, records);
    return;
  }
  RequireRange(block, first, count);
  auto* out = static_cast<unsigned char*>(records);
  const qelta::RecordReader cursor(block);
  for (std::size_t i = 0; i < count; ++i, out += block.GetRecordSize()) {
    block.GetRecord(first + i, *cursor);
    std::memcpy(out, FED_DataBlock::RecordBuffer(*cursor), block.GetRecordSize());
  }
}

void QeltaBulkAccess::WriteRun(FED_DataBlock& block, std::size_t first, std::size_t count,
                               const void* records) {
  if (auto* runs = dynamic_cast<FED_RecordRuns*>(&block)) {
    runs->WriteRun(first, count, records);
    return;
  }
  RequireRange(block, first, count);
  const auto* in = static_cast<const unsigned char*>(records);
  const qelta::RecordWriter cursor(block);
  for (std::size_t i = 0; i < count; ++i, in += block.GetRecordSize()) {
    std::memcpy(FED_DataBlock::RecordBuffer(*cursor), in, block.GetRecordSize());
    block.SetRecord(first + i, *cursor);
  }
}

void QeltaBulkAccess::ReadColumn(const FED_DataBlock& block, std::size_t field, std::size_t first,
                                 std::size_t count, void* values) {
  if (const auto* runs = dynamic_cast<const FED_RecordRuns*>(&block)) {
    runs->ReadColumn(field, first, count, values);
    return;
  }
  const FieldPlace place = PlaceOf(block, field);
  RequireRange(block, first, count);
  auto* out = static_cast<unsigned char*>(values);
  const qelta::RecordReader cursor(block);
  for (std::size_t i = 0; i < count; ++i, out += place.size) {
    block.GetRecord(first + i, *cursor);
    std::memcpy(out, FED_DataBlock::RecordBuffer(*cursor) + place.offset, place.size);
  }
}

void QeltaBulkAccess::WriteColumn(FED_DataBlock& block, std::size_t field, std::size_t first,
                                  std::size_t count, const void* values) {
  if (auto* runs = dynamic_cast<FED_RecordRuns*>(&block)) {
    runs->WriteColumn(field, first, count, values);
    return;
  }
  const FieldPlace place = PlaceOf(block, field);
  RequireRange(block, first, count);
  const auto* in = static_cast<const unsigned char*>(values);
  const qelta::RecordWriter cursor(block);
  for (std::size_t i = 0; i < count; ++i, in += place.size) {
    unsigned char* const bytes = FED_DataBlock::RecordBuffer(*cursor);
    if (block.HasRecord(first + i)) {
      block.GetRecord(first + i, *cursor);
    } else {
      std::memset(bytes, 0, block.GetRecordSize());
    }
    std::memcpy(bytes + place.offset, in, place.size);
    block.SetRecord(first + i, *cursor);
  }
}

void QeltaBulkAccess::PresentRuns(const FED_DataBlock& block, FED_IntSetIntvl<int>& out) {
  if (const auto* runs = dynamic_cast<const FED_RecordRuns*>(&block)) {
    runs->PresentRuns(out);
  } else {
    block.GetRecordIndices(out);
  }
}
