#pragma once

#include <cstddef>

#include "FED_DataBlock.h"
#include "FED_IntSetIntvl.h"
#include "QeltaExport.h"

/// Runs of records and columns of any block: by `FED_RecordRuns` where the block offers it, else
/// record by record with the same result. Shapes and failures are those of `FED_RecordRuns`; a
/// field number outside the layout fails.
class QELTA_EXPORT QeltaBulkAccess {
 public:
  /// The highest index that may hold a record.
  static constexpr std::size_t MAX_INDEX = 0x7fffffff;

  /// Bytes from the start of a record to a field, and the bytes of the field.
  struct FieldPlace {
    std::size_t offset;
    std::size_t size;
  };

  /// Where field `field`, counted from 1, stands in the records of the block; fails when there is
  /// no such field. Costs a pass over the fields before it.
  static FieldPlace PlaceOf(const FED_DataBlock& block, std::size_t field);

  /// Fails when `count` indices from `first` on reach beyond the highest index.
  static void RequireRange(const FED_DataBlock& block, std::size_t first, std::size_t count);

  static void ReadRun(const FED_DataBlock& block, std::size_t first, std::size_t count,
                      void* records);
  static void WriteRun(FED_DataBlock& block, std::size_t first, std::size_t count,
                       const void* records);
  static void ReadColumn(const FED_DataBlock& block, std::size_t field, std::size_t first,
                         std::size_t count, void* values);
  static void WriteColumn(FED_DataBlock& block, std::size_t field, std::size_t first,
                          std::size_t count, const void* values);
  static void PresentRuns(const FED_DataBlock& block, FED_IntSetIntvl<int>& out);
};
