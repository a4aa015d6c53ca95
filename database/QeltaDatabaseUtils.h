#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "FED_Database.h"
#include "QeltaExport.h"

/// Copies blocks between two databases of any storage.
///
/// Records of a catalogued kind are matched by external id, or by name where the id type is named,
/// and references inside them are translated: the two databases may number differently. Custom
/// blocks are copied index for index. A target block that is absent is made. A failure ends the
/// copy; what was copied before it stays in the target, and no cursor is left behind.
///
/// Blocks of catalogued kinds take a key with ONF in the target, too. Blocks that offer
/// `FED_RecordRuns` and hold nothing but values move in whole runs, with the same result; only new
/// ids may be registered before a record that then finds no room.
namespace QeltaDatabaseUtils {

enum EmptyBlockAction : std::int32_t {
  SKIP_EMPTY_BLOCKS = 0,
  COPY_EMPTY_BLOCKS = 1  ///< makes the target block all the same
};

/// The block in the source, and the block to write in the target. A key remembers where a database
/// found it: one that was used with another database is given as its `Duplicate()`.
using CopyJob = std::pair<FED_DataDescriptor, FED_DataDescriptor>;

/// Copies every block that the pattern selects under the same key; a block selected under several
/// descriptors is copied under each. Returns the number of blocks copied. Fails without a message
/// id when either database is not initialised.
QELTA_EXPORT std::uint64_t copy_datablocks(const FED_Database& source, FED_Database& target,
                                           const FED_DataDescriptorPattern& pattern,
                                           EmptyBlockAction action);

/// Copies the block of each job, in order.
QELTA_EXPORT std::uint64_t copy_datablocks(const FED_Database& source, FED_Database& target,
                                           const std::vector<CopyJob>& jobs,
                                           EmptyBlockAction action);

/// Copies the records of the source block at the indices that hold a record in `indices`.
QELTA_EXPORT void copy_datablock(const FED_Database& source, FED_Database& target,
                                 const CopyJob& job, const FED_DataBlock& indices);

/// Copies the records of the source block at the listed indices, in list order.
QELTA_EXPORT void copy_datablock(const FED_Database& source, FED_Database& target,
                                 const CopyJob& job, const std::vector<std::size_t>& indices);

}  // namespace QeltaDatabaseUtils
