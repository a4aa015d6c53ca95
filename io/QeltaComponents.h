#pragma once

#include <FED_DataBlock.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace qelta {

/// One number in the records of a block: a field, or a component of a vector or tensor.
struct QeltaComponent {
  std::string title;   ///< "DISPLACEMENT.x"
  std::size_t field;   ///< from 1
  std::size_t place;   ///< bytes from the start of a record
  BlockDataType type;  ///< BLOCK_DATA_INTEGER, BLOCK_DATA_FLOAT or BLOCK_DATA_DOUBLE

  /// The number in a record.
  double Read(const unsigned char* record) const;
};

/// "", or ".x", ".y", ".z", or ".xx", ".yy", ".zz", ".xy", ".yz", ".zx".
const std::vector<std::string>& ComponentNames(BlockDataType type);

/// The numbers in the records of a block, in order. References to entities, strings and lists are
/// none.
std::vector<QeltaComponent> NumbersOf(const FED_DataBlock& block);

/// Hands the records of a block to `visit` in ascending order, in batches of consecutive ones:
/// index of the first, count, bytes. Memory for a batch of about a megabyte.
using QeltaRecordVisitor =
    std::function<void(std::size_t first, std::size_t count, const unsigned char* records)>;
void VisitRecords(const FED_DataBlock& block, const QeltaRecordVisitor& visit);

/// What the records of a block belong to: the id type of its kind, or for a custom block the
/// ID_TYPE of its key.
FED_IdType RecordIdTypeOf(const FED_DataBlock& block);
/// The same for the block of a key.
FED_IdType RecordIdTypeOf(const FED_DataDescriptor& key);

}  // namespace qelta
