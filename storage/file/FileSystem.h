#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qelta {

enum class LockKind { SHARED, EXCLUSIVE };

/// An open file. Closed by the destructor, which never fails and releases the file's locks.
///
/// Every operation fails with an IoFailure that names the file. Not safe for several threads.
class File {
 public:
  virtual ~File() = default;
  File() = default;
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  /// Returns the number of bytes read, less than `size` at the end of the file only.
  virtual std::size_t ReadAt(std::uint64_t offset, void* data, std::size_t size) = 0;

  /// Writes all of it; the file grows as needed. How much was written is unknown after a failure.
  virtual void WriteAt(std::uint64_t offset, const void* data, std::size_t size) = 0;

  /// What was written before is durable afterwards, with what is needed to find it in the file.
  /// The file's name is not: see FileSystem::SyncDirectory. After a failure nothing is known about
  /// what was written since the last sync that succeeded.
  virtual void Sync() = 0;

  /// A hint that bytes which were written are going to be synced: the system may begin with it.
  virtual void StartSync(std::uint64_t, std::uint64_t) {}

  virtual void Truncate(std::uint64_t size) = 0;
  virtual std::uint64_t GetSize() = 0;

  // Locks on ranges of bytes, which need not exist. They belong to this object: another File of the
  // same file conflicts with it, in this process as in any other. SHARED needs a file open for
  // reading, EXCLUSIVE one open for writing.

  /// False when somebody else's lock is in the way; never waits.
  virtual bool TryLock(std::uint64_t first, std::uint64_t count, LockKind kind) = 0;
  virtual void Unlock(std::uint64_t first, std::uint64_t count) = 0;
  /// Whether anybody else holds a lock, of either kind, on any of the bytes, none of which this
  /// object has locked itself. The question may be in the way of somebody else's TryLock for a
  /// moment.
  virtual bool IsLocked(std::uint64_t first, std::uint64_t count) = 0;

  /// An adopted file is about to be locked by its owner. See FileSystem::Adopt.
  virtual void BeforeLock() {}
};

enum class OpenMode {
  READ,        ///< fails when there is no such file
  READ_WRITE,  ///< likewise
  CREATE       ///< for reading and writing; made when there is none, as it is when there is one
};

enum class PathKind { NOTHING, FILE, DIRECTORY, OTHER };

/// The one way in which the file storage reaches the operating system; fakes stand here in tests.
///
/// Paths are UTF-8 texts with '/' between their parts, relative ones to the current directory.
/// Every operation that can fail does so with an IoFailure that names the path.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Files are not inherited by programs that this process starts.
  virtual std::unique_ptr<File> Open(const std::string& path, OpenMode mode) = 0;

  /// Called for every file that the database engine of the catalogue opens by itself, whose
  /// operations then go through what is returned; `file` is the engine's own file. It is locked
  /// through the engine, never through this object.
  virtual std::unique_ptr<File> Adopt(const std::string& path, std::unique_ptr<File> file);

  /// The absolute path, as the database engine of the catalogue must be told it; empty where the
  /// engine finds that out by itself.
  virtual std::string GetEnginePath(const std::string& path);

  virtual PathKind GetKind(const std::string& path) = 0;
  /// The names in a directory, without "." and "..", in no order.
  virtual std::vector<std::string> List(const std::string& path) = 0;
  virtual void MakeDirectory(const std::string& path) = 0;
  /// Replaces a file, not a directory, that stands under `to`.
  virtual void Rename(const std::string& from, const std::string& to) = 0;
  virtual void Remove(const std::string& path) = 0;
  virtual void RemoveDirectory(const std::string& path) = 0;
  /// Names made, renamed and removed in the directory before are durable afterwards.
  virtual void SyncDirectory(const std::string& path) = 0;

  /// Whether this process may make files in the directory.
  virtual bool IsWritable(const std::string& directory) = 0;
  /// Whether files in the directory can be memory that processes share: true on file systems that
  /// are known to be local, false where in doubt.
  virtual bool IsLocal(const std::string& directory) = 0;

  /// Whether `file`, opened by this file system, is what stands under `path` now.
  virtual bool IsSame(File& file, const std::string& path) = 0;

  /// "process 4711 on host nina"
  virtual std::string DescribeProcess() = 0;

  /// Grows whenever this process is the new one of a fork. Costs a memory access.
  static std::uint64_t GetForkCount();
};

/// The file system of this machine; lives as long as the process.
FileSystem& SystemFiles();

/// The directory that a path lies in, "." when it names none.
std::string ParentOf(const std::string& path);

}  // namespace qelta
