#include "RunCopy.h"

#include <algorithm>
#include <typeinfo>

#include "BlockMetaData.h"
#include "FED_MemoryIdMap.h"

namespace qelta {
namespace {

// A chunk is to stay in the cache between being read and being written.
constexpr std::size_t kChunkBytes = std::size_t{128} * 1024;

bool IsBytesOnly(BlockDataType type) {
  return type != BLOCK_DATA_STRING && type != BLOCK_DATA_INT_SET && type != BLOCK_DATA_INT_LIST &&
         type != BLOCK_DATA_DOUBLE_LIST;
}

bool HaveSameBytes(const FED_DataBlock& from, const FED_DataBlock& to) {
  const std::vector<BlockDataType>& types = from.GetDataTypes();
  return types == to.GetDataTypes() && std::all_of(types.begin(), types.end(), IsBytesOnly);
}

std::size_t LongestRun(const FED_DataBlock& from) {
  const std::size_t fitting = kChunkBytes / std::max<std::size_t>(from.GetRecordSize(), 1);
  return std::clamp<std::size_t>(fitting, 1, static_cast<std::size_t>(from.GetNumRecords()));
}

const FED_OnfMetaData* FindKind(const FED_DataBlock& block) {
  const bool isCatalogued = block.GetDescriptor().Has(FED_DataDescriptor::ONF);
  return isCatalogued ? &MetaDataOf(block) : nullptr;
}

// Integers may refer to entities; other fields of bytes only do not, whatever their id type.
bool HasReferences(const FED_OnfMetaData& kind) {
  for (std::size_t i = 0; i < kind.dataTypes.size(); ++i) {
    const BlockDataType type = kind.dataTypes[i];
    const bool isInteger = type == BLOCK_DATA_INTEGER || type == BLOCK_DATA_INDEX;
    if (isInteger && kind.idTypes[i + 1] != ID_TYPE_RECORD_INDEX) return true;
  }
  return false;
}

// Only of this map it is known that an id leads back to its index, and that nobody listens.
bool IsPlainMap(const FED_IdMap& map) { return typeid(map) == typeid(FED_MemoryIdMap); }

}  // namespace

RunCopy::RunCopy(const FED_DataBlock& from, FED_DataBlock& to)
    : m_From(dynamic_cast<const FED_RecordRuns*>(&from)),
      m_To(dynamic_cast<FED_RecordRuns*>(&to)),
      m_RecordSize(from.GetRecordSize()) {
  const bool isPair = m_From != nullptr && m_To != nullptr && &from != &to;
  if (isPair && HaveSameBytes(from, to) && from.GetNumRecords() > 0) m_Longest = LongestRun(from);
}

RunCopy::RunCopy(const FED_DataBlock& from, const FED_IdMapsPool& fromMaps, FED_DataBlock& to,
                 FED_IdMapsPool& toMaps)
    : RunCopy(from, to) {
  if (!FindMaps(from, fromMaps, to, toMaps)) m_Longest = 0;
}

bool RunCopy::FindMaps(const FED_DataBlock& from, const FED_IdMapsPool& fromMaps,
                       const FED_DataBlock& to, FED_IdMapsPool& toMaps) {
  const FED_OnfMetaData* const fromKind = FindKind(from);
  const FED_OnfMetaData* const toKind = FindKind(to);
  if (fromKind == nullptr || toKind == nullptr) return false;
  if (HasReferences(*fromKind) || HasReferences(*toKind)) return false;
  const FED_IdType fromType = fromKind->idTypes.front(), toType = toKind->idTypes.front();
  if (fromType == ID_TYPE_RECORD_INDEX || toType == ID_TYPE_RECORD_INDEX) return false;
  m_FromMap = &fromMaps.GetMap(fromType);
  m_ToMap = &toMaps.GetMap(toType);
  m_RegistersIds = toKind->writeLookup.front();
  return IsPlainMap(*m_FromMap) && IsPlainMap(*m_ToMap);
}

bool RunCopy::TryCopy(std::size_t first, std::size_t count) {
  try {
    for (std::size_t done = 0; done < count;) done += CopySome(first + done, count - done);
    return true;
  } catch (...) {
    return false;
  }
}

// Everything that can fail for a single record of the source comes before the target is touched.
std::size_t RunCopy::CopySome(std::size_t first, std::size_t count) {
  const void* records = m_From->FindRun(first, count);
  if (records == nullptr) {
    m_Records.resize(count * m_RecordSize);
    m_From->ReadRun(first, count, m_Records.data());
    records = m_Records.data();
  }
  if (m_FromMap == nullptr) {
    m_To->WriteRun(first, count, records);
  } else {
    ReadIds(first, count);
    WriteByIds(count, static_cast<const unsigned char*>(records));
  }
  return count;
}

void RunCopy::ReadIds(std::size_t first, std::size_t count) {
  m_Ids.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    m_Ids[i] = m_FromMap->IdOfIndex(static_cast<std::int64_t>(first + i));
  }
}

void RunCopy::WriteByIds(std::size_t count, const unsigned char* records) {
  m_Targets.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    m_Targets[i] = static_cast<std::size_t>(m_RegistersIds ? m_ToMap->IndexOfIdForWrite(m_Ids[i])
                                                           : m_ToMap->IndexOfId(m_Ids[i]));
  }
  for (std::size_t i = 0; i < count;) {
    const std::size_t length = CountConsecutive(&m_Targets[i], count - i);
    m_To->WriteRun(m_Targets[i], length, records + i * m_RecordSize);
    i += length;
  }
}

std::size_t CountConsecutive(const std::size_t* indices, std::size_t count) {
  std::size_t length = 1;
  while (length < count && indices[length] == indices[0] + length) ++length;
  return length;
}

}  // namespace qelta
