#pragma once

#include <FED_OnfMetaData.h>

#include <cstddef>
#include <string>
#include <vector>

#include "Hdf5Handle.h"

namespace qelta {

/// How a field of a record format stands in a file.
struct Hdf5Field {
  enum Form { NUMBERS, TEXTS, INTEGER_LISTS, DOUBLE_LISTS };

  std::string name;  ///< of the dataset, or of the group of a list
  Form form;
  hid_t valueType;     ///< of numbers, and of the members of lists; belongs to the library
  std::size_t width;   ///< numbers a record
  std::size_t offset;  ///< bytes from the start of a record
  bool isSet;          ///< its members are in ascending order
  FED_IdType idType;   ///< what the integers refer to; ID_TYPE_RECORD_INDEX: nothing
  std::vector<std::string> components;  ///< of vectors and tensors
};

/// The fields of a record format, in order.
std::vector<Hdf5Field> FieldsOf(const FED_OnfMetaData& kind);

/// Bytes for each of the datasets of a block, so that those of all fields together are bounded.
std::size_t ChunkBytesFor(std::size_t fieldCount);

}  // namespace qelta
