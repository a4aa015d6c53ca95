#include "QeltaRecordRows.h"

#include <BlockMetaData.h>

#include <algorithm>

#include "QeltaComponents.h"

namespace qelta {
namespace {

QeltaCell ToCell(QeltaScalar scalar) {
  return std::visit([](auto& value) { return QeltaCell(std::move(value)); }, scalar);
}

}  // namespace

QeltaRecordRows::QeltaRecordRows(const FED_DataBlock& block, const FED_IdMapsPool& maps)
    : m_Block(block),
      m_Maps(maps),
      m_MetaData(MetaDataOf(block)),
      m_KeyType(RecordIdTypeOf(block)),
      m_Record(block) {}

const std::string& QeltaRecordRows::KeyTitle() const { return FED_ID_TYPE_INFO[m_KeyType].name; }

std::vector<std::string> QeltaRecordRows::Titles() const {
  std::vector<std::string> titles;
  for (std::size_t field = 0; field < m_MetaData.dataTypes.size(); ++field) {
    for (const std::string& component : ComponentNames(m_MetaData.dataTypes[field])) {
      titles.push_back(m_MetaData.fieldNames[field] + component);
    }
  }
  return titles;
}

std::optional<std::size_t> QeltaRecordRows::IndexOfId(std::int32_t id) const {
  if (m_KeyType == ID_TYPE_RECORD_INDEX) return WithRecord(id);
  const FED_IdMap& map = m_Maps.GetMap(m_KeyType);
  return map.ContainsId(id) ? WithRecord(map.IndexOfId(id)) : std::nullopt;
}

std::optional<std::size_t> QeltaRecordRows::IndexOfName(const std::string& name) const {
  if (m_KeyType == ID_TYPE_RECORD_INDEX) return std::nullopt;
  const FED_IdMap& map = m_Maps.GetMap(m_KeyType);
  return map.ContainsName(name) ? WithRecord(map.IndexOfName(name)) : std::nullopt;
}

std::optional<std::size_t> QeltaRecordRows::WithRecord(std::int64_t index) const {
  if (index < 0 || !m_Block.HasRecord(static_cast<std::size_t>(index))) return std::nullopt;
  return static_cast<std::size_t>(index);
}

QeltaScalar QeltaRecordRows::Key(std::size_t index) const {
  return Entity(m_KeyType, static_cast<std::int64_t>(index));
}

std::vector<QeltaCell> QeltaRecordRows::Cells(std::size_t index) {
  m_Block.GetRecord(index, *m_Record);
  std::vector<QeltaCell> cells;
  for (std::size_t field = 1; field <= m_Record->Size(); ++field) AddCells(field, cells);
  return cells;
}

void QeltaRecordRows::AddCells(std::size_t field, std::vector<QeltaCell>& cells) const {
  const FED_IdType type = m_MetaData.idTypes[field];
  double values[6];
  switch (m_Record->GetDataType(field)) {
    case BLOCK_DATA_INTEGER:
    case BLOCK_DATA_INDEX:
      cells.push_back(ToCell(Entity(type, m_Record->GetInteger(field))));
      break;
    case BLOCK_DATA_FLOAT:
      cells.emplace_back(double{m_Record->GetFloat(field)});
      break;
    case BLOCK_DATA_DOUBLE:
    case BLOCK_DATA_TIME:
      cells.emplace_back(m_Record->GetDouble(field));
      break;
    case BLOCK_DATA_VECTOR:
      m_Record->GetVector(field, values);
      cells.insert(cells.end(), values, values + 3);
      break;
    case BLOCK_DATA_TENSOR:
      m_Record->GetTensor(field, values);
      cells.insert(cells.end(), values, values + 6);
      break;
    case BLOCK_DATA_STRING:
      cells.push_back(type == ID_TYPE_RECORD_INDEX
                          ? QeltaCell(m_Record->GetString(field))
                          : ToCell(Entity(type, m_Record->GetInteger(field))));
      break;
    case BLOCK_DATA_INT_SET:
    case BLOCK_DATA_INT_LIST:
    case BLOCK_DATA_DOUBLE_LIST:
      cells.emplace_back(List(field));
      break;
  }
}

// An index that its map does not know is shown as it is, with a mark.
QeltaScalar QeltaRecordRows::Entity(FED_IdType type, std::int64_t index) const {
  if (type == ID_TYPE_RECORD_INDEX) return index;
  const FED_IdMap& map = m_Maps.GetMap(type);
  if (!map.ContainsIndex(index)) return "#" + std::to_string(index);
  if (FED_ID_TYPE_INFO[type].named == 0 || !map.HasNameAt(index)) {
    return std::int64_t{map.IdOfIndex(index)};
  }
  std::string name;
  map.NameOfIndex(index, name);
  return name;
}

std::vector<QeltaScalar> QeltaRecordRows::List(std::size_t field) const {
  std::vector<QeltaScalar> items;
  if (m_Record->GetDataType(field) == BLOCK_DATA_DOUBLE_LIST) {
    FED_DoubleArray list;
    m_Record->GetDoubleList(field, list);
    items.assign(list.data, list.data + list.count);
  } else {
    FED_IntArray list;
    m_Record->GetIntList(field, list);
    for (std::uint64_t i = 0; i < list.count; ++i) {
      items.push_back(Entity(m_MetaData.idTypes[field], list.data[i]));
    }
  }
  // The order of a set is that of indices, which means nothing outside of the database.
  if (m_Record->GetDataType(field) == BLOCK_DATA_INT_SET) std::sort(items.begin(), items.end());
  return items;
}

}  // namespace qelta
