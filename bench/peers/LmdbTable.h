#pragma once

#include <filesystem>
#include <memory>

#include "BlockStore.h"

namespace qelta::bench {

/// LMDB, one value a block; everything between two commits is one transaction.
std::unique_ptr<BlockStore> OpenLmdbTable(const std::filesystem::path& path, BlockStore::Mode mode);

}  // namespace qelta::bench
