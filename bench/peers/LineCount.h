#pragma once

#include <filesystem>

namespace qelta::bench {

/// Lets the system's `wc -l` read the file; false when that does not work.
bool LineCount(const std::filesystem::path& file);

}  // namespace qelta::bench
