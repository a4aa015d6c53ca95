#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <system_error>

#include "FileSystem.h"
#include "IoFailure.h"

namespace qelta {
namespace {

static_assert(sizeof(off_t) == 8, "files may be larger than 2 GiB");

std::atomic<std::uint64_t> forkCount{0};
[[maybe_unused]] const int forkHandler = pthread_atfork(nullptr, nullptr, [] { ++forkCount; });

IoProblem ToProblem(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return IoProblem::NOT_FOUND;
    case EEXIST:
    case ENOTEMPTY:
      return IoProblem::EXISTS;
    case EACCES:
    case EPERM:
    case EROFS:
      return IoProblem::DENIED;
    case ENOSPC:
    case EDQUOT:
      return IoProblem::NO_SPACE;
    case EAGAIN:
    case EBUSY:
    case ETXTBSY:
      return IoProblem::LOCKED;
    default:
      return IoProblem::OTHER;
  }
}

[[noreturn]] void Fail(const char* action, const std::string& path, int error = errno) {
  IoFailure::Throw(ToProblem(error), action, path, std::generic_category().message(error));
}

/// The result of a call that signals may interrupt.
template <class Call>
auto Repeat(Call call) {
  for (;;) {
    const auto result = call();
    if (result != -1 || errno != EINTR) return result;
  }
}

template <class Call>
void Require(const char* action, const std::string& path, Call call) {
  if (Repeat(call) == -1) Fail(action, path);
}

class Descriptor {
 public:
  Descriptor(const std::string& path, int flags)
      : m_Number(Repeat([&] { return open(path.c_str(), flags | O_CLOEXEC, 0666); })) {
    if (m_Number == -1) Fail("open", path);
    if (m_Number <= STDERR_FILENO) MoveUp(path);
  }
  ~Descriptor() { close(m_Number); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Get() const { return m_Number; }

 private:
  // In a program that closed its standard output, messages would be written into the file.
  void MoveUp(const std::string& path) {
    const int low = m_Number;
    m_Number = fcntl(low, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(low);
    if (m_Number == -1) Fail("open", path, error);
  }

  int m_Number;
};

class PosixFile final : public File {
 public:
  // Opening a pipe without O_NONBLOCK waits for its other end; for files it means nothing.
  PosixFile(const std::string& path, int flags)
      : m_Path(path), m_Descriptor(path, flags | O_NONBLOCK) {
    if (!S_ISREG(GetStatus().st_mode)) {
      IoFailure::Throw(IoProblem::EXISTS, "open", path, "it is not a file");
    }
  }
  // A fork shares the locks: it may neither keep them longer nor give them up.
  ~PosixFile() override {
    if (m_ForkCount != forkCount) return;
    struct flock all = Range(0, 0, F_UNLCK);
    CallLock(F_OFD_SETLK, all);
  }

  std::size_t ReadAt(std::uint64_t offset, void* data, std::size_t size) override {
    std::size_t done = 0;
    while (done < size) {
      const ssize_t count = Repeat([&] {
        return pread(m_Descriptor.Get(), static_cast<char*>(data) + done, Portion(size - done),
                     static_cast<off_t>(offset + done));
      });
      if (count == -1) Fail("read", m_Path);
      if (count == 0) break;
      done += static_cast<std::size_t>(count);
    }
    return done;
  }

  void WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    std::size_t done = 0;
    while (done < size) {
      const ssize_t count = Repeat([&] {
        return pwrite(m_Descriptor.Get(), static_cast<const char*>(data) + done,
                      Portion(size - done), static_cast<off_t>(offset + done));
      });
      if (count == -1) Fail("write", m_Path);
      if (count == 0) Fail("write", m_Path, ENOSPC);
      done += static_cast<std::size_t>(count);
    }
  }

  void Sync() override {
    Require("sync", m_Path, [&] { return fdatasync(m_Descriptor.Get()); });
  }

  void StartSync(std::uint64_t offset, std::uint64_t size) override {
#ifdef SYNC_FILE_RANGE_WRITE
    ::sync_file_range(m_Descriptor.Get(), static_cast<off64_t>(offset), static_cast<off64_t>(size),
                      SYNC_FILE_RANGE_WRITE);
#endif
  }

  void Truncate(std::uint64_t size) override {
    Require("truncate", m_Path,
            [&] { return ftruncate(m_Descriptor.Get(), static_cast<off_t>(size)); });
  }

  std::uint64_t GetSize() override { return static_cast<std::uint64_t>(GetStatus().st_size); }

  bool TryLock(std::uint64_t first, std::uint64_t count, LockKind kind) override {
    struct flock lock = Range(first, count, kind == LockKind::SHARED ? F_RDLCK : F_WRLCK);
    if (CallLock(F_OFD_SETLK, lock) == 0) return true;
    if (errno == EAGAIN || errno == EACCES) return false;
    Fail("lock", m_Path);
  }

  void Unlock(std::uint64_t first, std::uint64_t count) override {
    struct flock lock = Range(first, count, F_UNLCK);
    if (CallLock(F_OFD_SETLK, lock) == -1) Fail("unlock", m_Path);
  }

  bool IsLocked(std::uint64_t first, std::uint64_t count) override {
    struct flock lock = Range(first, count, F_WRLCK);
    if (CallLock(F_OFD_GETLK, lock) == -1) Fail("look for locks on", m_Path);
    return lock.l_type != F_UNLCK;
  }

  struct stat GetStatus() const {
    struct stat status {};
    if (fstat(m_Descriptor.Get(), &status) == -1) Fail("look at", m_Path);
    return status;
  }

 private:
  static std::size_t Portion(std::size_t size) { return std::min(size, std::size_t{1} << 30); }

  static struct flock Range(std::uint64_t first, std::uint64_t count, int type) {
    struct flock lock {};
    lock.l_type = static_cast<short>(type);
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(first);
    lock.l_len = static_cast<off_t>(count);
    return lock;
  }

  int CallLock(int command, struct flock& lock) const {
    return Repeat([&] { return fcntl(m_Descriptor.Get(), command, &lock); });
  }

  std::string m_Path;
  Descriptor m_Descriptor;
  std::uint64_t m_ForkCount = forkCount;
};

class Directory {
 public:
  explicit Directory(const std::string& path) : m_Path(path), m_Stream(opendir(path.c_str())) {
    if (m_Stream == nullptr) Fail("list", path);
  }
  ~Directory() { closedir(m_Stream); }
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;

  const char* Next() {
    errno = 0;
    const dirent* const entry = readdir(m_Stream);
    if (entry == nullptr && errno != 0) Fail("list", m_Path);
    return entry == nullptr ? nullptr : entry->d_name;
  }

 private:
  const std::string& m_Path;
  DIR* m_Stream;
};

int ToFlags(OpenMode mode) {
  switch (mode) {
    case OpenMode::READ:
      return O_RDONLY;
    case OpenMode::READ_WRITE:
      return O_RDWR;
    default:
      return O_RDWR | O_CREAT;
  }
}

/// False when there is nothing.
bool LookAt(const std::string& path, struct stat& status) {
  if (stat(path.c_str(), &status) == 0) return true;
  if (ToProblem(errno) != IoProblem::NOT_FOUND) Fail("look at", path);
  return false;
}

class PosixFiles final : public FileSystem {
 public:
  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override {
    return std::make_unique<PosixFile>(path, ToFlags(mode));
  }

  PathKind GetKind(const std::string& path) override {
    struct stat status {};
    if (!LookAt(path, status)) return PathKind::NOTHING;
    if (S_ISREG(status.st_mode)) return PathKind::FILE;
    return S_ISDIR(status.st_mode) ? PathKind::DIRECTORY : PathKind::OTHER;
  }

  std::vector<std::string> List(const std::string& path) override {
    std::vector<std::string> names;
    Directory directory(path);
    while (const char* const name = directory.Next()) names.emplace_back(name);
    const auto isDots = [](const std::string& name) { return name == "." || name == ".."; };
    names.erase(std::remove_if(names.begin(), names.end(), isDots), names.end());
    return names;
  }

  void MakeDirectory(const std::string& path) override {
    Require("make the directory", path, [&] { return mkdir(path.c_str(), 0777); });
  }

  void Rename(const std::string& from, const std::string& to) override {
    Require("rename", from + "' to '" + to, [&] { return rename(from.c_str(), to.c_str()); });
  }

  void Remove(const std::string& path) override {
    Require("remove", path, [&] { return unlink(path.c_str()); });
  }

  void RemoveDirectory(const std::string& path) override {
    Require("remove the directory", path, [&] { return rmdir(path.c_str()); });
  }

  // EINVAL: a file system, usually of a network, that has no such operation.
  void SyncDirectory(const std::string& path) override {
    const Descriptor directory(path, O_RDONLY | O_DIRECTORY);
    if (Repeat([&] { return fsync(directory.Get()); }) == 0 || errno == EINVAL) return;
    Fail("sync the directory", path);
  }

  bool IsWritable(const std::string& directory) override {
    return faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
  }

  bool IsLocal(const std::string& directory) override {
    constexpr std::array<std::uint32_t, 5> kLocal{
        EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC, TMPFS_MAGIC, OVERLAYFS_SUPER_MAGIC};
    struct statfs status {};
    if (statfs(directory.c_str(), &status) != 0) return false;
    const auto magic = static_cast<std::uint32_t>(status.f_type);
    return std::find(kLocal.begin(), kLocal.end(), magic) != kLocal.end();
  }

  bool IsSame(File& file, const std::string& path) override {
    const struct stat mine = dynamic_cast<PosixFile&>(file).GetStatus();
    struct stat theirs {};
    return LookAt(path, theirs) && mine.st_dev == theirs.st_dev && mine.st_ino == theirs.st_ino;
  }

  std::string DescribeProcess() override {
    std::array<char, HOST_NAME_MAX + 1> host{};
    if (gethostname(host.data(), host.size() - 1) != 0) std::snprintf(host.data(), 2, "?");
    return "process " + std::to_string(getpid()) + " on host " + host.data();
  }
};

}  // namespace

FileSystem& SystemFiles() {
  static FileSystem& files = *new PosixFiles;  // static objects may outlive a static one
  return files;
}

std::uint64_t FileSystem::GetForkCount() { return forkCount.load(std::memory_order_relaxed); }

}  // namespace qelta
