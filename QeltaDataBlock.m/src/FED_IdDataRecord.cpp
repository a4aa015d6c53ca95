#include "FED_IdDataRecord.h"

#include "FED_IdDataBlock.h"

FED_IdDataRecord::FED_IdDataRecord(FED_IdDataBlock& view, FED_DataRecord& record,
                                   FED_IdMapsPool& pool, const FED_OnfMetaData& metaData)
    : FED_ConstIdDataRecord(view, record, pool, metaData),
      m_WritableIdMapsPool(&pool),
      m_WritableDataRecord(&record) {}

FED_IdDataRecord::FED_IdDataRecord(FED_IdDataBlock& view, FED_IdMapsPool& pool,
                                   const FED_OnfMetaData& metaData)
    : FED_IdDataRecord(view, view.GetDataBlock().CreateDataRecord(), pool, metaData) {}

FED_IdDataRecord::FED_IdDataRecord(const FED_IdDataRecord& other) = default;

FED_IdDataRecord::~FED_IdDataRecord() = default;

int FED_IdDataRecord::IndexOf(std::size_t field, int id) {
  FED_IdMap& map = MapOf(GetIdType(field));
  const bool registers = m_OnfMetaData->writeLookup[field];
  return static_cast<int>(registers ? map.IndexOfIdForWrite(id) : map.IndexOfId(id));
}

int FED_IdDataRecord::IndexOf(std::size_t field, const std::string& name) {
  FED_IdMap& map = MapOf(GetIdType(field));
  const bool registers = m_OnfMetaData->writeLookup[field];
  return static_cast<int>(registers ? map.IndexOfNameForWrite(name) : map.IndexOfName(name));
}

void FED_IdDataRecord::SetInteger(std::size_t field, int value) {
  m_WritableDataRecord->SetInteger(field,
                                   IsTranslated(GetIdType(field)) ? IndexOf(field, value) : value);
}

void FED_IdDataRecord::SetIntList(std::size_t field, const FED_IntArray& values) {
  if (!IsTranslated(GetIdType(field))) {
    m_WritableDataRecord->SetIntList(field, values.data, static_cast<std::size_t>(values.count));
    return;
  }
  std::vector<int> indices;
  indices.reserve(static_cast<std::size_t>(values.count));
  for (std::uint64_t k = 0; k < values.count; ++k) {
    indices.push_back(IndexOf(field, values.data[k]));
  }
  m_WritableDataRecord->SetIntList(field, indices);
}

void FED_IdDataRecord::SetIntList(std::size_t field, const std::vector<int>& values) {
  SetIntList(field, FED_IntArray(values));
}

void FED_IdDataRecord::SetString(std::size_t field, const std::string& value) {
  if (IsTranslated(GetIdType(field))) {
    m_WritableDataRecord->SetInteger(field, IndexOf(field, value));
  } else {
    m_WritableDataRecord->SetString(field, value);
  }
}

void FED_IdDataRecord::SetStringList(std::size_t field, const std::vector<std::string>& values) {
  const FED_IdMap& map = MapOf(GetIdType(field));
  std::vector<int> indices;
  indices.reserve(values.size());
  for (const std::string& name : values) indices.push_back(static_cast<int>(map.IndexOfName(name)));
  m_WritableDataRecord->SetIntList(field, indices);
}

void FED_IdDataRecord::SetDoubleList(std::size_t field, const FED_DoubleArray& values) {
  m_WritableDataRecord->SetDoubleList(field, values.data, static_cast<std::size_t>(values.count));
}

void FED_IdDataRecord::SetDoubleList(std::size_t field, const std::vector<double>& values) {
  m_WritableDataRecord->SetDoubleList(field, values.data(), values.size());
}

FED_IdDataRecord& FED_IdDataRecord::operator=(const FED_ConstIdDataRecord& source) {
  const std::string& format = m_OnfMetaData->format;
  std::size_t field = 0;
  for (std::size_t position = 1; position < format.size(); ++position) {
    const char character = format[position];
    if (character != 'b' && character != '|') CopyField(character, ++field, source);
  }
  return *this;
}

FED_IdDataRecord& FED_IdDataRecord::operator=(const FED_IdDataRecord& source) {
  if (this == &source) return *this;
  return *this = static_cast<const FED_ConstIdDataRecord&>(source);
}

void FED_IdDataRecord::CopyField(char character, std::size_t field,
                                 const FED_ConstIdDataRecord& source) {
  switch (character) {
    case 'I':
    case 'i':
      SetInteger(field, source.GetInteger(field));
      break;
    case 'L':
    case 'O': {
      FED_IntArray list;
      source.GetIntList(field, list);
      SetIntList(field, list);
      break;
    }
    case 'S':
      SetString(field, source.GetString(field));
      break;
    case 'D': {
      FED_DoubleArray list;
      source.GetDoubleList(field, list);
      SetDoubleList(field, list);
      break;
    }
    default:
      m_WritableDataRecord->CopyBulkItemFrom(*source.m_DataRecord, field);
  }
}
