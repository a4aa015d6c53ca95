#pragma once

#include <FED_Database.h>

#include <filesystem>

#include "FrdReader.h"

namespace qelta {

/// Reads a result file into an initialised database, in one pass over the file. True when the file
/// has its end record.
///
/// Blocks that the database has under keys of the file are replaced, its id maps grow by what they
/// lack. After a failure the blocks that were read stay, the last of them perhaps in part.
bool ImportFrd(const std::filesystem::path& path, FED_Database& database,
               const FrdReadOptions& options = {});

}  // namespace qelta
