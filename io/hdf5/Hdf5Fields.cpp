#include "Hdf5Fields.h"

#include <OnfFormatStringTool.h>
#include <QeltaComponents.h>

#include <algorithm>

#include "Hdf5Column.h"

namespace qelta {
namespace {

Hdf5Field::Form FormOf(BlockDataType type, FED_IdType idType) {
  switch (type) {
    case BLOCK_DATA_STRING:
      // A named entity is referred to by its index.
      return idType == ID_TYPE_RECORD_INDEX ? Hdf5Field::TEXTS : Hdf5Field::NUMBERS;
    case BLOCK_DATA_INT_SET:
    case BLOCK_DATA_INT_LIST:
      return Hdf5Field::INTEGER_LISTS;
    case BLOCK_DATA_DOUBLE_LIST:
      return Hdf5Field::DOUBLE_LISTS;
    default:
      return Hdf5Field::NUMBERS;
  }
}

hid_t ValueTypeOf(BlockDataType type) {
  switch (type) {
    case BLOCK_DATA_DOUBLE:
    case BLOCK_DATA_TIME:
    case BLOCK_DATA_VECTOR:
    case BLOCK_DATA_TENSOR:
    case BLOCK_DATA_DOUBLE_LIST:
      return H5T_NATIVE_DOUBLE;
    case BLOCK_DATA_FLOAT:
      return H5T_NATIVE_FLOAT;
    default:
      return H5T_NATIVE_INT32;
  }
}

// "x" for ".x".
std::vector<std::string> ComponentsOf(BlockDataType type) {
  std::vector<std::string> components;
  for (const std::string& name : ComponentNames(type)) {
    if (!name.empty()) components.push_back(name.substr(1));
  }
  return components;
}

}  // namespace

std::vector<Hdf5Field> FieldsOf(const FED_OnfMetaData& kind) {
  std::vector<Hdf5Field> fields;
  std::size_t offset = 0;
  for (std::size_t i = 0; i < kind.dataTypes.size(); ++i) {
    const BlockDataType type = kind.dataTypes[i];
    const FED_IdType idType = kind.idTypes[i + 1];
    fields.push_back({kind.fieldNames[i], FormOf(type, idType), ValueTypeOf(type),
                      ComponentNames(type).size(), offset, type == BLOCK_DATA_INT_SET, idType,
                      ComponentsOf(type)});
    offset += static_cast<std::size_t>(OnfFormatStringTool::GetFieldSize(type));
  }
  return fields;
}

std::size_t ChunkBytesFor(std::size_t fieldCount) {
  constexpr std::size_t kAll = std::size_t{16} << 20;
  constexpr std::size_t kLeast = 4096;
  return std::clamp(kAll / std::max<std::size_t>(fieldCount, 1), kLeast, Hdf5Layout().chunkBytes);
}

}  // namespace qelta
