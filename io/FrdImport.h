#pragma once

#include <FED_Database.h>

#include <filesystem>
#include <vector>

#include "FrdReader.h"

namespace qelta {

/// Reads a result file into an initialised database, in one pass over the file. True when the file
/// has its end record.
///
/// Blocks that the database has under keys of the file are replaced, its id maps grow by what they
/// lack. After a failure the blocks that were read stay, the last of them perhaps in part.
bool ImportFrd(const std::filesystem::path& path, FED_Database& database,
               const FrdReadOptions& options = {});

/// The same for the blocks of the given keys alone; the id maps grow by all that the file numbers.
bool ImportFrdBlocks(const std::filesystem::path& path, FED_Database& database,
                     const std::vector<FED_DataDescriptor>& keys,
                     const FrdReadOptions& options = {});

}  // namespace qelta
