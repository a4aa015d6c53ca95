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
