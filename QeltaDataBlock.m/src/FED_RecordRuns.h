#pragma once

#include <cstddef>

#include "FED_IntSetIntvl.h"
#include "QeltaExport.h"

/// What a block may offer beside the operations of `FED_DataBlock`: whole runs of records and
/// columns at the speed of memory. Found by `dynamic_cast<FED_RecordRuns*>` on a block; callers
/// fall back to record by record with the same result.
///
/// Records are contiguous, `GetRecordSize()` bytes each; strings, lists and sets in them are
/// handles of that block. A column holds one field (numbered from 1) of consecutive records, its
/// values one after another without gaps. Reading fails when an index of the run holds no record,
/// and names the first such index; `records` and `values` may then be partly filled. Writing
/// creates absent records, and leaves them as they were when it fails for want of room. Indices
/// beyond 2^31 - 1 fail before anything is allocated. Copies may use runs in place of `GetRecord`
/// and `SetRecord`: a class that overrides the latter overrides the runs as well.
class QELTA_EXPORT FED_RecordRuns {
 public:
  virtual void ReadRun(std::size_t first, std::size_t count, void* records) const = 0;
  virtual void WriteRun(std::size_t first, std::size_t count, const void* records) = 0;

  virtual void ReadColumn(std::size_t field, std::size_t first, std::size_t count,
                          void* values) const = 0;
  /// Other fields of records that it creates are 0.
  virtual void WriteColumn(std::size_t field, std::size_t first, std::size_t count,
                           const void* values) = 0;

  /// Replaces `out` by the indices that hold a record.
  virtual void PresentRuns(FED_IntSetIntvl<int>& out) const = 0;

  /// The address of the records from `first` on, of which `count`, at least 1, are wanted; `count`
  /// becomes the number that lie there. Valid until the block changes. Null, with `count` as it
  /// was, when the block has no such place: `ReadRun` then. Null is the answer of this class.
  virtual const void* FindRun(std::size_t first, std::size_t& count) const;

 protected:
  virtual ~FED_RecordRuns();
};
