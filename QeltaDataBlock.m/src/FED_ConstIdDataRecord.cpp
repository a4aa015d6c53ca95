#include "FED_ConstIdDataRecord.h"

#include "FED_ConstIdDataBlock.h"

FED_ConstIdDataRecord::FED_ConstIdDataRecord(const FED_ConstIdDataBlock& view,
                                             const FED_IdMapsPool& pool,
                                             const FED_OnfMetaData& metaData)
    : FED_ConstIdDataRecord(view, view.GetDataBlock().CreateDataRecord(), pool, metaData) {}

FED_ConstIdDataRecord::FED_ConstIdDataRecord(const FED_ConstIdDataBlock& view,
                                             FED_ConstDataRecord& record,
                                             const FED_IdMapsPool& pool,
                                             const FED_OnfMetaData& metaData)
    : m_IdDataBlock(&view), m_OnfMetaData(&metaData), m_IdMapsPool(&pool) {
  const FED_DataBlock* const block = &view.GetDataBlock();
  // When there is no memory for the count of owners, the cursor is handed back at once.
  m_DataRecord.reset(&record,
                     [block](FED_ConstDataRecord* cursor) { block->DeleteDataRecord(*cursor); });
}

FED_ConstIdDataRecord::FED_ConstIdDataRecord(const FED_ConstIdDataRecord& other) = default;

FED_ConstIdDataRecord::~FED_ConstIdDataRecord() = default;

int FED_ConstIdDataRecord::GetInteger(std::size_t field) const {
  const int raw = m_DataRecord->GetInteger(field);
  const FED_IdType type = GetIdType(field);
  return IsTranslated(type) ? m_IdMapsPool->GetMap(type).IdOfIndex(raw) : raw;
}

void FED_ConstIdDataRecord::GetIntList(std::size_t field, FED_IntArray& values) const {
  const FED_IdType type = GetIdType(field);
  if (!IsTranslated(type)) {
    m_DataRecord->GetIntList(field, values);
    return;
  }
  FED_IntArray stored;
  m_DataRecord->GetIntList(field, stored);
  const FED_IdMap& map = m_IdMapsPool->GetMap(type);
  values.Resize(stored.count);
  for (std::uint64_t k = 0; k < stored.count; ++k) values.data[k] = map.IdOfIndex(stored.data[k]);
}

std::string FED_ConstIdDataRecord::GetString(std::size_t field) const {
  const FED_IdType type = GetIdType(field);
  if (!IsTranslated(type)) return m_DataRecord->GetString(field);
  std::string name;
  m_IdMapsPool->GetMap(type).NameOfIndex(m_DataRecord->GetInteger(field), name);
  return name;
}

void FED_ConstIdDataRecord::GetDoubleList(std::size_t field, FED_DoubleArray& values) const {
  m_DataRecord->GetDoubleList(field, values);
}
