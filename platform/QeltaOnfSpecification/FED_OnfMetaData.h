#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "FED_BlockDataType.h"
#include "FED_IdType.h"
#include "FED_OnfCategoryId.h"
#include "FED_OnfId.h"
#include "QeltaExport.h"

/// What is known about one block kind, or about one custom record format.
///
/// Lists indexed by position hold the record at 0 and field i (counted from 1) at i. Objects are
/// made by `FED_OnfInfoPool` and live as long as the process.
struct FED_OnfMetaData {
  FED_OnfId onfId;                       ///< 0 for a custom format
  std::string name;                      ///< "DISPLACEMENT"; empty for a custom format
  std::string title;                     ///< for people
  std::string unit;                      ///< physical quantity of the values, empty for none
  FED_OnfCategoryId category;            ///< 0 for a custom format
  std::string format;                    ///< record character, then one character per field
  std::uint64_t recordSize;              ///< bytes, the sum of the field sizes
  std::vector<BlockDataType> dataTypes;  ///< one per field
  FED_BlockDataType::FieldDim fieldDim;
  std::vector<FED_IdType> idTypes;      ///< by position
  std::vector<bool> writeLookup;        ///< by position: writing may register a new id or name
  std::vector<std::string> fieldNames;  ///< one per field
};

struct FED_IdTypeInfoData {
  std::int32_t idType;
  std::int32_t named;  ///< 1 when records of this id type are matched by name, else 0
  std::string name;    ///< for people: "element group"
};

/// One entry per `FED_IdType`, indexed by its value.
extern QELTA_EXPORT const FED_IdTypeInfoData FED_ID_TYPE_INFO[16];
