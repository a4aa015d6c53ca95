#pragma once

#include <cstdint>

/// The kinds of field that a record can hold; the comment gives the bytes in the record.
enum BlockDataType : std::int32_t {
  BLOCK_DATA_INTEGER = 1,      // 4, integer or id reference
  BLOCK_DATA_DOUBLE = 2,       // 8
  BLOCK_DATA_FLOAT = 3,        // 4
  BLOCK_DATA_STRING = 4,       // 4, handle of a string kept by the block
  BLOCK_DATA_VECTOR = 5,       // 24, three doubles
  BLOCK_DATA_TENSOR = 6,       // 48, six doubles: xx, yy, zz, xy, yz, zx
  BLOCK_DATA_INT_SET = 7,      // 4, handle of an integer set
  BLOCK_DATA_INT_LIST = 8,     // 4, handle of an integer list
  BLOCK_DATA_DOUBLE_LIST = 9,  // 4, handle of a double list
  BLOCK_DATA_INDEX = 10,       // 4, index or id reference
  BLOCK_DATA_TIME = 11         // 8, time or frequency
};

struct FED_BlockDataType {
  /// How many doubles one record contributes to the field data of its block.
  enum FieldDim : std::int32_t { DIM_NONE = 0, DIM_SCALAR = 1, DIM_VECTOR = 3, DIM_TENSOR = 6 };
};
