#pragma once

#include <FED_Database.h>

#include <filesystem>
#include <functional>

#include "FrdReader.h"
#include "QeltaFieldText.h"

namespace qelta {

/// What of a file is imported, and under which keys.
struct FrdImportChoice {
  /// Tells which blocks to take; none takes all.
  std::function<bool(const FED_DataDescriptor&)> accepts;
  QeltaKeyChanges changes;
  /// Called with true when a table of the file begins, with false when it has ended and its blocks
  /// are whole: a good moment to save.
  std::function<void(bool isOpen)> onTable;
};

/// Reads a result file into an initialised database, in one pass over the file. True when the file
/// has its end record.
///
/// Blocks that the database has under keys of the file are replaced, its id maps grow by all that
/// the file numbers. After a failure the blocks that were read stay, the last of them perhaps in
/// part.
bool ImportFrd(const std::filesystem::path& path, FED_Database& database,
               const FrdReadOptions& options = {}, const FrdImportChoice& choice = {});

}  // namespace qelta
