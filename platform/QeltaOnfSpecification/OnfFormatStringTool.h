#pragma once

#include <vector>

#include "FED_BlockDataType.h"
#include "QeltaExport.h"

/// Reads record formats: a record character (`I`: records known by id, `S`: by name), then one
/// character per field:
///
///   I integer or id reference   d double   f float   S string or name reference   V vector
///   T tensor   O integer set   L integer list   D double list   i index or id reference
///   t time or frequency
///
/// `|` and `b` may stand anywhere after the record character and count for nothing.
class QELTA_EXPORT OnfFormatStringTool {
 public:
  /// Replaces `types` by the field types in order and `size` by the bytes of one record.
  /// Returns the number of fields. A text that is no format is a `FED_Failure` and changes nothing.
  static int GetFormatSizeInformation(const char* format, int& size,
                                      std::vector<BlockDataType>& types);

  /// 1, 3 or 6 when the only field is a double, a vector or a tensor, else 0.
  static FED_BlockDataType::FieldDim DetermineFieldDim(const std::vector<BlockDataType>& types);

  /// Bytes that a field takes in a record: 4, 8, 24 or 48; 0 for a value that is no field type.
  static int GetFieldSize(BlockDataType type);
};
