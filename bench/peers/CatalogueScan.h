#pragma once

#include <cstdint>
#include <filesystem>

namespace qelta::bench {

/// Opens the catalogue of a database through plain SQLite and selects key, format and places of all
/// blocks, unchecked; the sum of their iterations.
std::uint64_t ScanCatalogue(const std::filesystem::path& database);

}  // namespace qelta::bench
