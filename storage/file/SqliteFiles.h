#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

#include "FileSystem.h"

namespace qelta {

/// A way for SQLite to its files that leads through a FileSystem: the name of a VFS for
/// sqlite3_open_v2, registered while this object lives. No connection may outlive it.
///
/// Files are opened and locked by SQLite's own means, and handed to FileSystem::Adopt; reads,
/// writes, syncs and truncations go through what that returns, removals through the FileSystem.
/// Failures become error codes of SQLite. Files are never mapped into memory. One thread at a time.
class SqliteFiles {
 public:
  explicit SqliteFiles(FileSystem& files);
  ~SqliteFiles();
  SqliteFiles(const SqliteFiles&) = delete;
  SqliteFiles& operator=(const SqliteFiles&) = delete;

  const char* GetName() const { return m_Name.c_str(); }

  /// What the system said to the operation that failed last; empty when none did.
  const std::string& GetLastFailure() const { return m_LastFailure; }
  void ForgetLastFailure() { m_LastFailure.clear(); }

  /// Whether the sync of a file or directory has ever failed.
  bool HasSyncFailed() const { return m_HasSyncFailed; }

 private:
  class Shim;

  FileSystem& m_Files;
  std::string m_Name;
  std::string m_LastFailure;
  bool m_HasSyncFailed = false;
  sqlite3_vfs* m_Real;
  sqlite3_vfs m_Vfs{};
};

}  // namespace qelta
