#include "QeltaRecordRows.h"

#include <BlockMetaData.h>
#include <FED_Message.h>

namespace qelta {
namespace {

using Descriptor = FED_DataDescriptor;

FED_IdType KeyTypeOf(const FED_DataBlock& block, const FED_OnfMetaData& metaData) {
  const Descriptor& key = block.GetDescriptor();
  if (key.Has(Descriptor::ONF) || !key.Has(Descriptor::ID_TYPE)) return metaData.idTypes.front();
  const int type = key.GetInteger(Descriptor::ID_TYPE);
  const bool isKnown = ID_TYPE_NODE <= type && type <= ID_TYPE_RECORD_INDEX;
  return isKnown ? static_cast<FED_IdType>(type) : ID_TYPE_RECORD_INDEX;
}

std::vector<std::string> ComponentsOf(BlockDataType type) {
  switch (type) {
    case BLOCK_DATA_VECTOR:
      return {".x", ".y", ".z"};
    case BLOCK_DATA_TENSOR:
      return {".xx", ".yy", ".zz", ".xy", ".yz", ".zx"};
    default:
      return {""};
  }
}

std::string Number(double value) { return FED_MESSAGE("%g", value); }

void AddNumbers(const double* values, std::size_t count, std::vector<std::string>& cells) {
  for (std::size_t i = 0; i < count; ++i) cells.push_back(Number(values[i]));
}

}  // namespace

QeltaRecordRows::QeltaRecordRows(const FED_DataBlock& block, const FED_IdMapsPool& maps)
    : m_Block(block),
      m_Maps(maps),
      m_MetaData(MetaDataOf(block)),
      m_KeyType(KeyTypeOf(block, m_MetaData)),
      m_Record(block) {}

const std::string& QeltaRecordRows::KeyTitle() const { return FED_ID_TYPE_INFO[m_KeyType].name; }

std::vector<std::string> QeltaRecordRows::Titles() const {
  std::vector<std::string> titles;
  for (std::size_t field = 0; field < m_MetaData.dataTypes.size(); ++field) {
    for (const std::string& component : ComponentsOf(m_MetaData.dataTypes[field])) {
      titles.push_back(m_MetaData.fieldNames[field] + component);
    }
  }
  return titles;
}

std::optional<std::size_t> QeltaRecordRows::IndexOfId(std::int32_t id) const {
  std::int64_t index = id;
  if (m_KeyType != ID_TYPE_RECORD_INDEX) {
    const FED_IdMap& map = m_Maps.GetMap(m_KeyType);
    if (!map.ContainsId(id)) return std::nullopt;
    index = map.IndexOfId(id);
  }
  if (!m_Block.HasRecord(static_cast<std::size_t>(index))) return std::nullopt;
  return static_cast<std::size_t>(index);
}

std::string QeltaRecordRows::Key(std::size_t index) const {
  return Entity(m_KeyType, static_cast<std::int64_t>(index));
}

std::vector<std::string> QeltaRecordRows::Cells(std::size_t index) {
  m_Block.GetRecord(index, *m_Record);
  std::vector<std::string> cells;
  for (std::size_t field = 1; field <= m_Record->Size(); ++field) AddCells(field, cells);
  return cells;
}

void QeltaRecordRows::AddCells(std::size_t field, std::vector<std::string>& cells) const {
  const FED_IdType type = m_MetaData.idTypes[field];
  double values[6];
  switch (m_Record->GetDataType(field)) {
    case BLOCK_DATA_INTEGER:
    case BLOCK_DATA_INDEX:
      cells.push_back(Entity(type, m_Record->GetInteger(field)));
      break;
    case BLOCK_DATA_FLOAT:
      cells.push_back(Number(double{m_Record->GetFloat(field)}));
      break;
    case BLOCK_DATA_DOUBLE:
    case BLOCK_DATA_TIME:
      cells.push_back(Number(m_Record->GetDouble(field)));
      break;
    case BLOCK_DATA_VECTOR:
      m_Record->GetVector(field, values);
      AddNumbers(values, 3, cells);
      break;
    case BLOCK_DATA_TENSOR:
      m_Record->GetTensor(field, values);
      AddNumbers(values, 6, cells);
      break;
    case BLOCK_DATA_STRING:
      cells.push_back(type == ID_TYPE_RECORD_INDEX ? m_Record->GetString(field)
                                                   : Entity(type, m_Record->GetInteger(field)));
      break;
    case BLOCK_DATA_INT_SET:
    case BLOCK_DATA_INT_LIST:
    case BLOCK_DATA_DOUBLE_LIST:
      cells.push_back(ListText(field));
      break;
  }
}

// An index that its map does not know is shown as it is, with a mark.
std::string QeltaRecordRows::Entity(FED_IdType type, std::int64_t index) const {
  if (type == ID_TYPE_RECORD_INDEX) return std::to_string(index);
  const FED_IdMap& map = m_Maps.GetMap(type);
  if (!map.ContainsIndex(index)) return "#" + std::to_string(index);
  if (FED_ID_TYPE_INFO[type].named == 0 || !map.HasNameAt(index)) {
    return std::to_string(map.IdOfIndex(index));
  }
  std::string name;
  map.NameOfIndex(index, name);
  return name;
}

std::string QeltaRecordRows::ListText(std::size_t field) const {
  std::string text;
  const auto add = [&](const std::string& item) { text += (text.empty() ? "" : " ") + item; };
  if (m_Record->GetDataType(field) == BLOCK_DATA_DOUBLE_LIST) {
    FED_DoubleArray list;
    m_Record->GetDoubleList(field, list);
    for (std::uint64_t i = 0; i < list.count; ++i) add(Number(list.data[i]));
  } else {
    FED_IntArray list;
    m_Record->GetIntList(field, list);
    for (std::uint64_t i = 0; i < list.count; ++i) {
      add(Entity(m_MetaData.idTypes[field], list.data[i]));
    }
  }
  return text;
}

}  // namespace qelta
