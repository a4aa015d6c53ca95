#pragma once

#include <filesystem>
#include <memory>

#include "BlockStore.h"

namespace qelta::bench {

/// A `FED_FileDatabase`; blocks of a catalogued kind, and a custom block for the table.
std::unique_ptr<BlockStore> OpenFileDatabase(const std::filesystem::path& path,
                                             BlockStore::Mode mode);

}  // namespace qelta::bench
