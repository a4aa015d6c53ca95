#pragma once

#include <filesystem>
#include <memory>

#include "BlockStore.h"

namespace qelta::bench {

/// HDF5, one contiguous dataset a block, a group an iteration, the latest file format. Replaces in
/// place, so a crash may damage what was there.
std::unique_ptr<BlockStore> OpenHdf5File(const std::filesystem::path& path, BlockStore::Mode mode);

}  // namespace qelta::bench
