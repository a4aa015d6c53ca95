#pragma once

#include <string>

#include "FED_FileDatabase.h"

namespace qelta {

class FileSession;
class FileStore;
class FileSystem;

// The long work of FED_FileDatabase; see there. Paths are UTF-8.

FED_FileDatabase::Report Verify(FileStore& store, const FED_FileDatabase::Progress& progress);

/// `directory` may be damaged or open elsewhere. The target is saved now and then; a failure leaves
/// what was saved behind.
FED_FileDatabase::Report Salvage(FileSystem& files, const std::string& directory,
                                 const std::wstring& target,
                                 const FED_FileDatabase::Progress& progress);

/// There must be no unsaved changes.
bool Compact(FileSession& session, const FED_FileDatabase::Progress& progress);

bool Backup(FileSystem& files, const std::string& directory, const std::string& target,
            const FED_FileDatabase::Progress& progress);

/// Drops strings and lists that no record refers to from all blocks, and commits that. There must
/// be no unsaved changes.
void DropUnreferenced(FileStore& store);

/// The same for the blocks in which any were stored since the database was opened. Never fails:
/// without it, they just stay.
void DropUnreferenced(FileSession& session) noexcept;

}  // namespace qelta
