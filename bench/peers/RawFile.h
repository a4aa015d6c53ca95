#pragma once

#include <filesystem>
#include <memory>

#include "BlockStore.h"

namespace qelta::bench {

/// One file, written and read with the system's plain calls: the blocks, then an array of their
/// keys and places. Replaces in place, so a crash may damage what was there.
std::unique_ptr<BlockStore> OpenRawFile(const std::filesystem::path& path, BlockStore::Mode mode);

}  // namespace qelta::bench
