#include "FED_IdDataBlock.h"

FED_IdDataBlock::FED_IdDataBlock(FED_DataBlock& block, FED_IdMapsPool& pool, bool flushDestroyBlock)
    : FED_ConstIdDataBlock(block, pool),
      m_WritableDataBlock(&block),
      m_WritableIdMapsPool(&pool),
      m_FlushDestroyBlock(flushDestroyBlock) {}

FED_IdDataBlock::FED_IdDataBlock(const FED_IdDataBlock& other) = default;

FED_IdDataBlock::~FED_IdDataBlock() {
  if (m_FlushDestroyBlock) m_WritableDataBlock->FlushDestroy();
}

FED_IdDataRecord& FED_IdDataBlock::CreateDataRecord() {
  return *new FED_IdDataRecord(*this, *m_WritableIdMapsPool, *m_OnfMetaData);
}

std::size_t FED_IdDataBlock::WriteIndexOf(int id) {
  const FED_IdType type = GetRecordIdType();
  if (type == ID_TYPE_RECORD_INDEX) return static_cast<std::size_t>(std::int64_t{id});
  FED_IdMap& map = m_WritableIdMapsPool->GetMap(type);
  return static_cast<std::size_t>(m_OnfMetaData->writeLookup.front() ? map.IndexOfIdForWrite(id)
                                                                     : map.IndexOfId(id));
}

std::size_t FED_IdDataBlock::WriteIndexOf(const std::string& name) {
  FED_IdMap& map = m_WritableIdMapsPool->GetMap(GetRecordIdType());
  return static_cast<std::size_t>(m_OnfMetaData->writeLookup.front() ? map.IndexOfNameForWrite(name)
                                                                     : map.IndexOfName(name));
}

void FED_IdDataBlock::SetRecord(int id, const FED_IdDataRecord& record) {
  m_WritableDataBlock->SetRecord(WriteIndexOf(id), *record.m_WritableDataRecord);
}

void FED_IdDataBlock::SetRecord(const std::string& name, const FED_IdDataRecord& record) {
  m_WritableDataBlock->SetRecord(WriteIndexOf(name), *record.m_WritableDataRecord);
}

void FED_IdDataBlock::SetScalar(int id, const double& value) {
  m_WritableDataBlock->SetScalar(WriteIndexOf(id), value);
}

void FED_IdDataBlock::SetVector(int id, const double* values) {
  m_WritableDataBlock->SetVector(WriteIndexOf(id), values);
}

void FED_IdDataBlock::SetTensor(int id, const double* values) {
  m_WritableDataBlock->SetTensor(WriteIndexOf(id), values);
}

void FED_IdDataBlock::SetScalar(const std::string& name, const double& value) {
  m_WritableDataBlock->SetScalar(WriteIndexOf(name), value);
}

void FED_IdDataBlock::SetVector(const std::string& name, const double* values) {
  m_WritableDataBlock->SetVector(WriteIndexOf(name), values);
}

void FED_IdDataBlock::SetTensor(const std::string& name, const double* values) {
  m_WritableDataBlock->SetTensor(WriteIndexOf(name), values);
}
