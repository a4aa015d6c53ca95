#include "RecordContent.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "FED_OnfInfoPool.h"
#include "RecordCursor.h"

namespace qelta::test {
namespace {

const FED_OnfMetaData& KindOf(const FED_DataBlock& block) {
  const FED_DataDescriptor& key = block.GetDescriptor();
  if (!key.Has(FED_DataDescriptor::ONF)) return FED_OnfInfoPool::FetchOnfInfo(block.GetFormat());
  return FED_OnfInfoPool::GetOnfInfo(
      static_cast<FED_OnfId>(key.GetInteger(FED_DataDescriptor::ONF)));
}

bool HasMap(FED_IdType type) { return type != ID_TYPE_RECORD_INDEX; }

std::string Exactly(double value) {
  char text[40];
  std::snprintf(text, sizeof text, " %a", value);
  return text;
}

template <class Values>
std::string ListOf(const Values& values, std::size_t count) {
  std::string text;
  for (std::size_t k = 0; k < count; ++k) text += Exactly(values[k]);
  return text;
}

class Teller {
 public:
  Teller(const FED_OnfMetaData& kind, const FED_IdMapsPool& maps) : m_Kind(kind), m_Maps(maps) {}

  std::string NameRecord(std::size_t index) const {
    const FED_IdType type = m_Kind.idTypes[0];
    const bool isNamed = FED_ID_TYPE_INFO[type].named == 1;
    const auto number = static_cast<std::int64_t>(index);
    return isNamed ? Name(type, number) : std::to_string(Id(type, number));
  }

  std::string TellField(const FED_ConstDataRecord& record, std::size_t i) const {
    const FED_IdType type = m_Kind.idTypes[i];
    double values[6];
    FED_DoubleArray doubles;
    switch (record.GetDataType(i)) {
      case BLOCK_DATA_FLOAT:
        return Exactly(static_cast<double>(record.GetFloat(i)));
      case BLOCK_DATA_DOUBLE:
      case BLOCK_DATA_TIME:
        return Exactly(record.GetDouble(i));
      case BLOCK_DATA_VECTOR:
        record.GetVector(i, values);
        return ListOf(values, 3);
      case BLOCK_DATA_TENSOR:
        record.GetTensor(i, values);
        return ListOf(values, 6);
      case BLOCK_DATA_DOUBLE_LIST:
        record.GetDoubleList(i, doubles);
        return ListOf(doubles.data, doubles.count);
      case BLOCK_DATA_STRING:
        return HasMap(type) ? Name(type, record.GetInteger(i)) : record.GetString(i);
      case BLOCK_DATA_INT_LIST:
      case BLOCK_DATA_INT_SET:
        return TellIds(record, i);
      default:
        return std::to_string(Id(type, record.GetInteger(i)));
    }
  }

 private:
  std::int64_t Id(FED_IdType type, std::int64_t index) const {
    return HasMap(type) ? m_Maps.GetMap(type).IdOfIndex(index) : index;
  }
  std::string Name(FED_IdType type, std::int64_t index) const {
    std::string name;
    m_Maps.GetMap(type).NameOfIndex(index, name);
    return name;
  }
  // A set has no order of its own, and what order its indices have depends on the numbering.
  std::string TellIds(const FED_ConstDataRecord& record, std::size_t i) const {
    FED_IntArray list;
    record.GetIntList(i, list);
    std::vector<double> ids;
    for (std::size_t k = 0; k < list.count; ++k) {
      ids.push_back(static_cast<double>(Id(m_Kind.idTypes[i], list.data[k])));
    }
    if (record.GetDataType(i) == BLOCK_DATA_INT_SET) std::sort(ids.begin(), ids.end());
    return ListOf(ids, ids.size());
  }

  const FED_OnfMetaData& m_Kind;
  const FED_IdMapsPool& m_Maps;
};

}  // namespace

Content ExternalContent(const FED_DataBlock& block, const FED_IdMapsPool& maps) {
  Content content;
  const Teller teller(KindOf(block), maps);
  const qelta::RecordReader cursor(block);
  for (const std::size_t index : block) {
    block.GetRecord(index, *cursor);
    std::string& text = content[teller.NameRecord(index)];
    for (std::size_t i = 1; i <= cursor->Size(); ++i) text += '/' + teller.TellField(*cursor, i);
  }
  return content;
}

void FillRecord(FED_DataBlock& block, std::size_t index,
                const std::function<int(FED_IdType)>& refer) {
  const FED_OnfMetaData& kind = KindOf(block);
  const qelta::RecordWriter record(block);
  const double x = static_cast<double>(index);
  const double values[] = {x, x + 0.5, -x, 1e300, x * x, 0.1};
  for (std::size_t i = 1; i <= record->Size(); ++i) {
    const FED_IdType type = kind.idTypes[i];
    switch (record->GetDataType(i)) {
      case BLOCK_DATA_STRING:
        HasMap(type) ? record->SetInteger(i, refer(type))
                     : record->SetString(i, "text " + std::to_string(index));
        break;
      case BLOCK_DATA_INT_LIST:
      case BLOCK_DATA_INT_SET:
        record->SetIntList(i, std::vector<int>{refer(type), refer(type), refer(type)});
        break;
      case BLOCK_DATA_DOUBLE_LIST:
        record->SetDoubleList(i, values, index % 6);
        break;
      case BLOCK_DATA_INTEGER:
      case BLOCK_DATA_INDEX:
        record->SetInteger(i, refer(type));
        break;
      case BLOCK_DATA_FLOAT:
        record->SetFloat(i, static_cast<float>(x) / 4);
        break;
      case BLOCK_DATA_VECTOR:
        record->SetVector(i, values);
        break;
      case BLOCK_DATA_TENSOR:
        record->SetTensor(i, values);
        break;
      default:
        record->SetDouble(i, values[1]);
    }
  }
  block.SetRecord(index, *record);
}

void FillRecord(FED_DataBlock& block, std::size_t index) {
  FillRecord(block, index, [index](FED_IdType) { return static_cast<int>(index); });
}

}  // namespace qelta::test
