#include "FED_ConstIdDataBlock.h"

#include "BlockMetaData.h"

std::uint64_t FED_ConstIdDataBlock::s_InstanceCounter = 0;

FED_ConstIdDataBlock::FED_ConstIdDataBlock(const FED_DataBlock& block, const FED_IdMapsPool& pool)
    : m_OnfMetaData(&FetchOnfMetaDataObject(block)), m_DataBlock(&block), m_IdMapsPool(&pool) {
  ++s_InstanceCounter;
}

FED_ConstIdDataBlock::FED_ConstIdDataBlock(const FED_ConstIdDataBlock& other)
    : m_OnfMetaData(other.m_OnfMetaData),
      m_DataBlock(other.m_DataBlock),
      m_IdMapsPool(other.m_IdMapsPool) {
  ++s_InstanceCounter;
}

FED_ConstIdDataBlock::~FED_ConstIdDataBlock() { --s_InstanceCounter; }

const FED_OnfMetaData& FED_ConstIdDataBlock::FetchOnfMetaDataObject(const FED_DataBlock& block) {
  return qelta::MetaDataOf(block);
}

const FED_IdMap& FED_ConstIdDataBlock::GetIdMap() const {
  return m_IdMapsPool->GetMap(GetRecordIdType());
}

std::size_t FED_ConstIdDataBlock::IndexOf(int id) const {
  if (GetRecordIdType() == ID_TYPE_RECORD_INDEX) {
    return static_cast<std::size_t>(std::int64_t{id});
  }
  return static_cast<std::size_t>(GetIdMap().IndexOfId(id));
}

std::size_t FED_ConstIdDataBlock::IndexOf(const std::string& name) const {
  return static_cast<std::size_t>(GetIdMap().IndexOfName(name));
}

int FED_ConstIdDataBlock::GetId(std::size_t index) const {
  if (GetRecordIdType() == ID_TYPE_RECORD_INDEX) return static_cast<int>(index);
  return GetIdMap().IdOfIndex(static_cast<std::int64_t>(index));
}

std::string FED_ConstIdDataBlock::GetName(std::size_t index) const {
  std::string name;
  GetIdMap().NameOfIndex(static_cast<std::int64_t>(index), name);
  return name;
}

bool FED_ConstIdDataBlock::HasId(std::size_t index) const {
  if (GetRecordIdType() == ID_TYPE_RECORD_INDEX) return false;
  return GetIdMap().ContainsIndex(static_cast<std::int64_t>(index));
}

bool FED_ConstIdDataBlock::HasRecord(int id) const {
  if (GetRecordIdType() != ID_TYPE_RECORD_INDEX && !GetIdMap().ContainsId(id)) return false;
  return m_DataBlock->HasRecord(IndexOf(id));
}

bool FED_ConstIdDataBlock::HasRecord(const std::string& name) const {
  const FED_IdMap& map = GetIdMap();
  if (!map.ContainsName(name)) return false;
  return m_DataBlock->HasRecord(static_cast<std::size_t>(map.IndexOfName(name)));
}

void FED_ConstIdDataBlock::GetRecord(int id, FED_ConstIdDataRecord& record) const {
  m_DataBlock->GetRecord(IndexOf(id), *record.m_DataRecord);
}

void FED_ConstIdDataBlock::GetRecord(const std::string& name, FED_ConstIdDataRecord& record) const {
  m_DataBlock->GetRecord(IndexOf(name), *record.m_DataRecord);
}

void FED_ConstIdDataBlock::GetScalar(int id, double& value) const {
  value = m_DataBlock->GetScalar(IndexOf(id));
}

void FED_ConstIdDataBlock::GetVector(int id, double* values) const {
  m_DataBlock->GetVector(IndexOf(id), values);
}

void FED_ConstIdDataBlock::GetTensor(int id, double* values) const {
  m_DataBlock->GetTensor(IndexOf(id), values);
}

void FED_ConstIdDataBlock::GetScalar(const std::string& name, double& value) const {
  value = m_DataBlock->GetScalar(IndexOf(name));
}

void FED_ConstIdDataBlock::GetVector(const std::string& name, double* values) const {
  m_DataBlock->GetVector(IndexOf(name), values);
}

void FED_ConstIdDataBlock::GetTensor(const std::string& name, double* values) const {
  m_DataBlock->GetTensor(IndexOf(name), values);
}

FED_ConstIdDataRecord& FED_ConstIdDataBlock::CreateDataRecord() const {
  return *new FED_ConstIdDataRecord(*this, *m_IdMapsPool, *m_OnfMetaData);
}

void FED_ConstIdDataBlock::DeleteDataRecord(FED_ConstIdDataRecord& record) const {
  // Read back from a volatile, the address may be null; a compiler may not assume otherwise.
  FED_ConstIdDataRecord* const volatile address = &record;
  delete address;
}
