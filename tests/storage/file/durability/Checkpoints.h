#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "FED_FileDatabase.h"
#include "FileSystem.h"

namespace qelta::test {

// A history of saves. What a database holds after save `number` follows from the number alone:
// blocks that come, grow, change and go, small and large, dense and sparse, with values, strings
// and lists, further names, ids and names of entities. Number 0 is the empty database.

/// Changes the database from save `number - 1` to `number`, all but the save itself. May be
/// repeated after it failed.
void MakeCheckpoint(FED_Database& database, std::uint64_t number);

/// The number of what the database holds; it may be that in part only.
std::uint64_t ReadNumber(const FED_Database& database);

/// How the database differs from save `number`, looking at every value; empty when it does not.
std::string FindDifference(FED_Database& database, std::uint64_t number);

/// An open database with the smallest cache.
std::unique_ptr<FED_FileDatabase> OpenDatabase(FileSystem& files, const std::string& path,
                                               FED_DatabaseDefs::AccessMode mode);

/// The number of what the database holds; a test failure when it is not wholly that, or when the
/// database itself finds fault with it.
std::uint64_t ExpectWhole(FED_FileDatabase& database);

}  // namespace qelta::test
