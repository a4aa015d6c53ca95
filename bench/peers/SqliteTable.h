#pragma once

#include <filesystem>
#include <memory>

#include "BlockStore.h"

namespace qelta::bench {

/// SQLite, one row a block; a write-ahead log with full synchronisation, pages of 64 KiB.
std::unique_ptr<BlockStore> OpenSqliteTable(const std::filesystem::path& path,
                                            BlockStore::Mode mode);

}  // namespace qelta::bench
