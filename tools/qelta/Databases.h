#pragma once

#include <FED_Database.h>
#include <FED_Exception.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace qelta {

// Databases on disk: all that this tool knows about how they are kept.

/// Whether something of this name can only be a database: it is a directory.
bool IsDatabase(const std::string& name);

/// An open database; closes without saving. A cache size of 0 is the default.
std::unique_ptr<FED_Database> OpenDatabase(const std::string& name,
                                           FED_DatabaseDefs::AccessMode mode,
                                           std::uint64_t cacheBytes = 0);

/// The same for writing; fails when there is none.
std::unique_ptr<FED_Database> OpenExistingDatabase(const std::string& name);

/// Makes all changes durable at once.
void SaveDatabase(FED_Database& database);

/// Closes a database without saving, and says nothing about what is lost.
void DiscardChanges(std::unique_ptr<FED_Database> database);

/// The same, and deletes it.
void DiscardDatabase(std::unique_ptr<FED_Database> database, const std::string& name);

/// Called with the bytes that are done and those that there are; false ends the work early.
using DatabaseProgress = std::function<bool(std::uint64_t done, std::uint64_t total)>;

struct DatabaseReport {
  std::uint64_t blocks = 0;
  std::uint64_t bytes = 0;
  std::vector<std::string> problems;  ///< one line each
};

/// Reads everything and compares it with its checksums.
DatabaseReport VerifyDatabase(const std::string& name, const DatabaseProgress& progress);

/// Copies what is intact in a damaged database into a new one.
DatabaseReport SalvageDatabase(const std::string& name, const std::string& target,
                               const DatabaseProgress& progress);

/// Writes the content anew without gaps.
void CompactDatabase(const std::string& name, const DatabaseProgress& progress);

/// Copies the newest checkpoint into a new database.
void BackupDatabase(const std::string& name, const std::string& target,
                    const DatabaseProgress& progress);

/// True for the failure of a device, false for damage.
bool IsDeviceFailure(const FED_Exception& failure);

/// True when the system refused something under a path that the failure names.
bool IsRefusal(const FED_Exception& failure);

}  // namespace qelta
