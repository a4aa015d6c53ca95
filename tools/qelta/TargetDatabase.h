#pragma once

#include <FED_Database.h>

#include <cstdint>
#include <memory>
#include <string>

namespace qelta {

/// The database that a command writes to, made when it is not there. For a dry run nothing is ever
/// written: an absent one is an empty one in memory.
std::unique_ptr<FED_Database> OpenTarget(const std::string& name, bool isDryRun,
                                         std::uint64_t cacheBytes = 0);

/// "1 block", "2 blocks".
std::string CountText(std::uint64_t number, const std::string& what);

}  // namespace qelta
