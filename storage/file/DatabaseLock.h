#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FileSystem.h"

namespace qelta {

/// Who works with a database directory: one writer, and readers that each look at a generation.
/// Stands in the file `lock` of the directory, which is made when it is absent and never removed.
///
/// The writer holds its byte as long as this object lives. A reader calls BeginRead, loads the
/// catalogue, calls Hold for the generation that it found, then EndRead. What it holds, the writer
/// sees in GetReaderGenerations. All locks go with the object, or with the process.
class DatabaseLock {
 public:
  /// The highest generation that can be held.
  static constexpr std::uint64_t kMaxGeneration =
      (std::uint64_t{1} << 63) - 2 - (std::uint64_t{1} << 32);

  /// A writer fails when there is one already, in this process or another, with a message that says
  /// who. A reader works without locks where the file is absent and may not be made.
  DatabaseLock(FileSystem& files, const std::string& directory, bool isWriter);

  // For readers. The locks are shared, nobody holds them against a reader for long: an IoFailure
  // means that the file system does not lock.

  /// From here to EndRead the writer reuses nothing.
  void BeginRead();
  void EndRead();
  /// Nests; each Hold has its Release.
  void Hold(std::uint64_t generation);
  void Release(std::uint64_t generation);

  // For the writer.

  /// Whether somebody is between BeginRead and EndRead.
  bool HasReadersStarting();
  /// The generations from `first` to `last` that somebody else holds, ascending. One question to
  /// the system when there is none, up to 64 for each that there is.
  std::vector<std::uint64_t> GetReaderGenerations(std::uint64_t first, std::uint64_t last);

 private:
  void OpenForReading();
  void OpenForWriting();
  [[noreturn]] void FailReplaced() const;
  [[noreturn]] void FailHeld();
  void WriteHolder();
  bool IsHeld(std::uint64_t generation) const;
  void LockShared(std::uint64_t place);
  void Collect(std::uint64_t first, std::uint64_t last, std::vector<std::uint64_t>& found);

  FileSystem& m_Files;
  std::string m_Path;
  std::unique_ptr<File> m_File;  ///< null when there are no locks
  std::vector<std::uint64_t> m_Held;
};

}  // namespace qelta
