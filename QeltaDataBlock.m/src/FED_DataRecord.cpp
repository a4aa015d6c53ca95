#include "FED_DataRecord.h"

#include <algorithm>

#include "FED_DataBlock.h"
#include "IntSetList.h"

FED_DataRecord::FED_DataRecord(FED_DataBlock& block, std::uint64_t recordSize,
                               const std::vector<BlockDataType>& dataTypes)
    : FED_ConstDataRecord(block, recordSize, dataTypes), m_WritableBlock(&block) {}

FED_DataRecord::~FED_DataRecord() = default;

void FED_DataRecord::SetString(std::size_t i, const std::string& text) {
  WriteHandle(i, m_WritableBlock->SetString(text));
}

void FED_DataRecord::SetIntList(std::size_t i, const FED_IntArray& list) {
  SetIntList(i, list.data, static_cast<std::size_t>(list.count));
}

void FED_DataRecord::SetIntList(std::size_t i, const std::vector<int>& list) {
  SetIntList(i, list.data(), list.size());
}

void FED_DataRecord::SetIntList(std::size_t i, const int* values, std::size_t count) {
  if (IsIntList(i)) {
    WriteHandle(i, m_WritableBlock->SetIntList(values, count));
  } else {
    SetIntSet(i, qelta::MakeIntSet(values, count));
  }
}

void FED_DataRecord::SetDoubleList(std::size_t i, const FED_DoubleArray& list) {
  SetDoubleList(i, list.data, static_cast<std::size_t>(list.count));
}

void FED_DataRecord::SetDoubleList(std::size_t i, const std::vector<double>& list) {
  SetDoubleList(i, list.data(), list.size());
}

void FED_DataRecord::SetDoubleList(std::size_t i, const double* values, std::size_t count) {
  WriteHandle(i, m_WritableBlock->SetDoubleList(values, count));
}

void FED_DataRecord::SetIntSet(std::size_t i, const FED_IntSetIntvl<int>& set) {
  WriteHandle(i, m_WritableBlock->StoreIntSet(set));
}

void FED_DataRecord::CopyBulkItemFrom(const FED_ConstDataRecord& source, std::size_t i) {
  // A source of another layout may have less to give.
  const std::size_t size = std::min(GetDataTypeSize(i), source.GetDataTypeSize(i));
  std::memmove(GetDataPtr(i), source.GetDataPtr(i), size);
}

FED_DataRecord& FED_DataRecord::operator=(const FED_ConstDataRecord& source) {
  if (Size() != source.Size()) return *this;
  for (std::size_t i = 1; i <= Size(); ++i) CopyField(source, i);
  return *this;
}

FED_DataRecord& FED_DataRecord::operator=(const FED_DataRecord& source) {
  if (this == &source) return *this;
  return *this = static_cast<const FED_ConstDataRecord&>(source);
}

void FED_DataRecord::CopyField(const FED_ConstDataRecord& source, std::size_t i) {
  switch (GetDataType(i)) {
    case BLOCK_DATA_STRING:
      SetString(i, source.GetString(i));
      break;
    case BLOCK_DATA_INT_SET:
    case BLOCK_DATA_INT_LIST: {
      FED_IntArray list;
      source.GetIntList(i, list);
      SetIntList(i, list);
      break;
    }
    case BLOCK_DATA_DOUBLE_LIST: {
      FED_DoubleArray list;
      source.GetDoubleList(i, list);
      SetDoubleList(i, list);
      break;
    }
    case BLOCK_DATA_INTEGER:
    case BLOCK_DATA_DOUBLE:
    case BLOCK_DATA_FLOAT:
    case BLOCK_DATA_VECTOR:
    case BLOCK_DATA_TENSOR:
    case BLOCK_DATA_INDEX:
    case BLOCK_DATA_TIME:
      CopyBulkItemFrom(source, i);
      break;
  }
}
