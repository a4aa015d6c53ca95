#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "FED_Database.h"
#include "FED_OnfInfoPool.h"

namespace qelta::test {

/// The numbers of a record, field after field; list fields give their members.
struct DumpedRecord {
  std::vector<double> numbers;
  std::vector<std::string> texts;

  bool operator==(const DumpedRecord& other) const {
    return numbers == other.numbers && texts == other.texts;
  }
};

using DumpedBlock = std::map<std::size_t, DumpedRecord>;

/// All blocks of a database by the text form of their keys, read one record at a time.
using Dump = std::map<std::string, DumpedBlock>;

/// Whether the field holds the index of a named entity in place of a text.
inline bool IsReference(const FED_DataBlock& block, std::size_t field) {
  const FED_DataDescriptor& key = block.GetDescriptor();
  if (!key.Has(FED_DataDescriptor::ONF)) return false;
  const auto kind = static_cast<FED_OnfId>(key.GetInteger(FED_DataDescriptor::ONF));
  return FED_OnfInfoPool::GetOnfInfo(kind).idTypes[field] != ID_TYPE_RECORD_INDEX;
}

inline void Append(const FED_ConstDataRecord& record, std::size_t field, bool isReference,
                   DumpedRecord& out) {
  double values[6];
  std::vector<int> list;
  switch (record.GetDataType(field)) {
    case 4:
      if (isReference) {
        values[0] = record.GetInteger(field);
        break;
      }
      out.texts.push_back(record.GetString(field));
      return;
    case 5:
      record.GetVector(field, values);
      break;
    case 6:
      record.GetTensor(field, values);
      break;
    case 8:
      list.resize(record.GetIntListLen(field));
      record.GetIntList(field, list.data());
      out.numbers.insert(out.numbers.end(), list.begin(), list.end());
      return;
    default:
      values[0] =
          record.GetDataTypeSize(field) == 4 ? record.GetInteger(field) : record.GetDouble(field);
  }
  const std::size_t count = record.GetDataTypeSize(field) / 8;
  out.numbers.insert(out.numbers.end(), values, values + (count == 0 ? 1 : count));
}

inline DumpedBlock DumpBlock(const FED_DataBlock& block) {
  DumpedBlock dump;
  FED_ConstDataRecord& record = block.CreateDataRecord();
  for (const std::size_t index : block) {
    block.GetRecord(index, record);
    for (std::size_t field = 1; field <= record.Size(); ++field) {
      Append(record, field, IsReference(block, field), dump[index]);
    }
  }
  block.DeleteDataRecord(record);
  return dump;
}

inline Dump DumpDatabase(FED_Database& database) {
  Dump dump;
  for (const FED_DataDescriptor& key : database.FindBlocks(FED_DataDescriptorPattern())) {
    dump[key.ToString()] = DumpBlock(database.GetDataBlock(key));
  }
  return dump;
}

}  // namespace qelta::test
