#include "SqliteFiles.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <new>
#include <system_error>

#include "IoFailure.h"

namespace qelta {
namespace {

std::string MakeName(const void* owner) {
  char name[40];
  std::snprintf(name, sizeof name, "qelta-%p", owner);
  return name;
}

// On Windows there is one that allows long paths.
sqlite3_vfs* FindReal() {
  sqlite3_vfs* const longPaths = sqlite3_vfs_find("win32-longpath");
  return longPaths != nullptr ? longPaths : sqlite3_vfs_find(nullptr);
}

/// A file that SQLite's own VFS opened, and closes again itself.
class EngineFile final : public File {
 public:
  EngineFile(std::string path, sqlite3_file& file) : m_Path(std::move(path)), m_File(file) {}

  std::size_t ReadAt(std::uint64_t offset, void* data, std::size_t size) override {
    const int result = m_File.pMethods->xRead(&m_File, data, static_cast<int>(size),
                                              static_cast<sqlite3_int64>(offset));
    if (result == SQLITE_IOERR_SHORT_READ) return GetShortSize(offset, size);
    Require("read", result);
    return size;
  }

  void WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    Require("write", m_File.pMethods->xWrite(&m_File, data, static_cast<int>(size),
                                             static_cast<sqlite3_int64>(offset)));
  }

  void Sync() override { Require("sync", m_File.pMethods->xSync(&m_File, SQLITE_SYNC_FULL)); }

  void Truncate(std::uint64_t size) override {
    Require("truncate", m_File.pMethods->xTruncate(&m_File, static_cast<sqlite3_int64>(size)));
  }

  std::uint64_t GetSize() override {
    sqlite3_int64 size = 0;
    Require("look at", m_File.pMethods->xFileSize(&m_File, &size));
    return static_cast<std::uint64_t>(size);
  }

  bool TryLock(std::uint64_t, std::uint64_t, LockKind) override { FailLocking(); }
  void Unlock(std::uint64_t, std::uint64_t) override { FailLocking(); }
  bool IsLocked(std::uint64_t, std::uint64_t) override { FailLocking(); }

 private:
  // The file may have grown since it ended too early.
  std::size_t GetShortSize(std::uint64_t offset, std::size_t size) {
    const std::uint64_t end = std::max(GetSize(), offset);
    return static_cast<std::size_t>(std::min<std::uint64_t>(end - offset, size - 1));
  }

  void Require(const char* action, int result) {
    if (result == SQLITE_OK) return;
    const bool isFull = (result & 0xff) == SQLITE_FULL;
    int error = 0;
    m_File.pMethods->xFileControl(&m_File, SQLITE_FCNTL_LAST_ERRNO, &error);
    const std::string reason =
        error == 0 ? sqlite3_errstr(result) : std::system_category().message(error);
    IoFailure::Throw(isFull ? IoProblem::NO_SPACE : IoProblem::OTHER, action, m_Path, reason);
  }

  [[noreturn]] void FailLocking() const {
    IoFailure::Throw(IoProblem::OTHER, "lock", m_Path, "it is locked through its engine only");
  }

  std::string m_Path;
  sqlite3_file& m_File;
};

/// The file of SQLite's own VFS, and the way to it.
struct OpenFile {
  explicit OpenFile(const sqlite3_vfs& vfs)
      : storage(
            new std::max_align_t[static_cast<std::size_t>(vfs.szOsFile) / sizeof(std::max_align_t) +
                                 1]{}) {}
  ~OpenFile() { Close(); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(storage.get()); }

  int Close() {
    file.reset();
    const sqlite3_io_methods* const methods = Real()->pMethods;
    Real()->pMethods = nullptr;
    return methods == nullptr ? SQLITE_OK : methods->xClose(Real());
  }

  std::unique_ptr<std::max_align_t[]> storage;
  std::unique_ptr<File> file;
};

}  // namespace

/// The functions that SQLite calls.
class SqliteFiles::Shim {
 public:
  static sqlite3_vfs MakeVfs(SqliteFiles& owner);

 private:
  struct ShimFile : sqlite3_file {
    OpenFile* open;
    SqliteFiles* owner;
  };

  static SqliteFiles& Owner(sqlite3_vfs* vfs) { return *static_cast<SqliteFiles*>(vfs->pAppData); }
  static ShimFile& Get(sqlite3_file* file) { return *static_cast<ShimFile*>(file); }
  static sqlite3_file* Real(sqlite3_file* file) { return Get(file).open->Real(); }

  /// Calls the function of the same name of SQLite's own VFS or file.
  template <auto kMethod>
  struct Forward;
  template <class Result, class... Arguments,
            Result (*sqlite3_vfs::*kMethod)(sqlite3_vfs*, Arguments...)>
  struct Forward<kMethod> {
    static Result Call(sqlite3_vfs* vfs, Arguments... arguments) {
      sqlite3_vfs* const real = Owner(vfs).m_Real;
      return (real->*kMethod)(real, arguments...);
    }
  };
  template <class Result, class... Arguments,
            Result (*sqlite3_io_methods::*kMethod)(sqlite3_file*, Arguments...)>
  struct Forward<kMethod> {
    static Result Call(sqlite3_file* file, Arguments... arguments) {
      return (Real(file)->pMethods->*kMethod)(Real(file), arguments...);
    }
  };

  static int Remember(SqliteFiles& owner, int code, const char* text) noexcept {
    try {
      owner.m_LastFailure = text;
    } catch (const std::bad_alloc&) {
      owner.m_LastFailure.clear();
    }
    return code;
  }

  /// The result of `work`; `code` when it fails in a way that SQLite has no other code for.
  template <class Work>
  static int Guard(SqliteFiles& owner, int code, Work work) noexcept {
    try {
      return work();
    } catch (const IoFailure& failure) {
      const bool isFull = failure.GetProblem() == IoProblem::NO_SPACE;
      return Remember(owner, isFull ? SQLITE_FULL : code, failure.what());
    } catch (const std::bad_alloc&) {
      return SQLITE_NOMEM;
    } catch (const std::exception& failure) {
      return Remember(owner, code, failure.what());
    } catch (...) {
      return code;
    }
  }

  /// Likewise for a file that SQLite opened; `work` gets the adopted file.
  template <class Work>
  static int Guard(sqlite3_file* file, int code, Work work) noexcept {
    return Guard(*Get(file).owner, code, [&] {
      work(*Get(file).open->file);
      return SQLITE_OK;
    });
  }

  /// Likewise; whatever goes wrong, nothing is known about the disk afterwards.
  template <class Work>
  static int GuardSync(SqliteFiles& owner, int code, Work work) noexcept {
    const int result = Guard(owner, code, [&] {
      work();
      return SQLITE_OK;
    });
    if (result != SQLITE_OK) owner.m_HasSyncFailed = true;
    return result;
  }

  static const sqlite3_io_methods* ChooseMethods(const sqlite3_io_methods& real);
  static int Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags);
  static int Delete(sqlite3_vfs* vfs, const char* name, int syncsDirectory);
  static int FullPathname(sqlite3_vfs* vfs, const char* name, int size, char* full);

  static int Close(sqlite3_file* file) {
    const std::unique_ptr<OpenFile> open(Get(file).open);
    file->pMethods = nullptr;
    return open->Close();
  }

  static int Read(sqlite3_file* file, void* data, int size, sqlite3_int64 offset) {
    const auto wanted = static_cast<std::size_t>(size);
    return Guard(*Get(file).owner, SQLITE_IOERR_READ, [&] {
      const std::size_t count =
          Get(file).open->file->ReadAt(static_cast<std::uint64_t>(offset), data, wanted);
      if (count == wanted) return SQLITE_OK;
      std::memset(static_cast<char*>(data) + count, 0, wanted - count);
      return SQLITE_IOERR_SHORT_READ;
    });
  }

  static int Write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
    return Guard(file, SQLITE_IOERR_WRITE, [&](File& adopted) {
      adopted.WriteAt(static_cast<std::uint64_t>(offset), data, static_cast<std::size_t>(size));
    });
  }

  static int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    return Guard(file, SQLITE_IOERR_TRUNCATE,
                 [&](File& adopted) { adopted.Truncate(static_cast<std::uint64_t>(size)); });
  }

  static int Sync(sqlite3_file* file, int) {
    return GuardSync(*Get(file).owner, SQLITE_IOERR_FSYNC, [&] { Get(file).open->file->Sync(); });
  }

  static int FileSize(sqlite3_file* file, sqlite3_int64* size) {
    return Guard(file, SQLITE_IOERR_FSTAT,
                 [&](File& adopted) { *size = static_cast<sqlite3_int64>(adopted.GetSize()); });
  }

  static int Lock(sqlite3_file* file, int level) {
    const int result = Guard(file, SQLITE_IOERR_LOCK, [](File& adopted) { adopted.BeforeLock(); });
    return result != SQLITE_OK ? result : Forward<&sqlite3_io_methods::xLock>::Call(file, level);
  }

  static int ShmLock(sqlite3_file* file, int offset, int count, int flags) {
    const bool locks = (flags & SQLITE_SHM_LOCK) != 0;
    const int result = Guard(file, SQLITE_IOERR_SHMLOCK, [locks](File& adopted) {
      if (locks) adopted.BeforeLock();
    });
    if (result != SQLITE_OK) return result;
    return Forward<&sqlite3_io_methods::xShmLock>::Call(file, offset, count, flags);
  }

  static sqlite3_io_methods MakeMethods() {
    sqlite3_io_methods methods{};
    methods.iVersion = 1;
    methods.xClose = Close;
    methods.xRead = Read;
    methods.xWrite = Write;
    methods.xTruncate = Truncate;
    methods.xSync = Sync;
    methods.xFileSize = FileSize;
    methods.xLock = Lock;
    methods.xUnlock = Forward<&sqlite3_io_methods::xUnlock>::Call;
    methods.xCheckReservedLock = Forward<&sqlite3_io_methods::xCheckReservedLock>::Call;
    methods.xFileControl = Forward<&sqlite3_io_methods::xFileControl>::Call;
    methods.xSectorSize = Forward<&sqlite3_io_methods::xSectorSize>::Call;
    methods.xDeviceCharacteristics = Forward<&sqlite3_io_methods::xDeviceCharacteristics>::Call;
    return methods;
  }

  static sqlite3_io_methods MakeSharingMethods() {
    sqlite3_io_methods methods = MakeMethods();
    methods.iVersion = 2;
    methods.xShmMap = Forward<&sqlite3_io_methods::xShmMap>::Call;
    methods.xShmLock = ShmLock;
    methods.xShmBarrier = Forward<&sqlite3_io_methods::xShmBarrier>::Call;
    methods.xShmUnmap = Forward<&sqlite3_io_methods::xShmUnmap>::Call;
    return methods;
  }
};

// A file without shared memory must say so: SQLite looks before it chooses a write-ahead log.
const sqlite3_io_methods* SqliteFiles::Shim::ChooseMethods(const sqlite3_io_methods& real) {
  static const sqlite3_io_methods plain = MakeMethods();
  static const sqlite3_io_methods sharing = MakeSharingMethods();
  return real.iVersion >= 2 && real.xShmMap != nullptr ? &sharing : &plain;
}

int SqliteFiles::Shim::Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags,
                            int* outFlags) {
  file->pMethods = nullptr;
  SqliteFiles& owner = Owner(vfs);
  return Guard(owner, SQLITE_CANTOPEN, [&] {
    auto open = std::make_unique<OpenFile>(*owner.m_Real);
    const int result = owner.m_Real->xOpen(owner.m_Real, name, open->Real(), flags, outFlags);
    if (result != SQLITE_OK) return result;
    const std::string path = name == nullptr ? "" : name;
    open->file = owner.m_Files.Adopt(path, std::make_unique<EngineFile>(path, *open->Real()));
    const sqlite3_io_methods* const methods = ChooseMethods(*open->Real()->pMethods);
    Get(file).owner = &owner;
    Get(file).open = open.release();
    file->pMethods = methods;
    return SQLITE_OK;
  });
}

int SqliteFiles::Shim::Delete(sqlite3_vfs* vfs, const char* name, int syncsDirectory) {
  SqliteFiles& owner = Owner(vfs);
  const int result = Guard(owner, SQLITE_IOERR_DELETE, [&] {
    try {
      owner.m_Files.Remove(name);
    } catch (const IoFailure& failure) {
      if (failure.GetProblem() != IoProblem::NOT_FOUND) throw;
      return SQLITE_IOERR_DELETE_NOENT;
    }
    return SQLITE_OK;
  });
  if (result != SQLITE_OK || syncsDirectory == 0) return result;
  return GuardSync(owner, SQLITE_IOERR_DIR_FSYNC,
                   [&] { owner.m_Files.SyncDirectory(ParentOf(name)); });
}

int SqliteFiles::Shim::FullPathname(sqlite3_vfs* vfs, const char* name, int size, char* full) {
  SqliteFiles& owner = Owner(vfs);
  return Guard(owner, SQLITE_CANTOPEN, [&] {
    const std::string path = owner.m_Files.GetEnginePath(name);
    if (path.empty()) return Forward<&sqlite3_vfs::xFullPathname>::Call(vfs, name, size, full);
    if (path.size() >= static_cast<std::size_t>(size)) return SQLITE_CANTOPEN;
    std::memcpy(full, path.c_str(), path.size() + 1);
    return SQLITE_OK;
  });
}

sqlite3_vfs SqliteFiles::Shim::MakeVfs(SqliteFiles& owner) {
  sqlite3_vfs vfs{};
  vfs.iVersion = 2;
  vfs.szOsFile = sizeof(ShimFile);
  vfs.mxPathname = owner.m_Real->mxPathname;
  vfs.zName = owner.GetName();
  vfs.pAppData = &owner;
  vfs.xOpen = Open;
  vfs.xDelete = Delete;
  vfs.xAccess = Forward<&sqlite3_vfs::xAccess>::Call;
  vfs.xFullPathname = FullPathname;
  vfs.xDlOpen = Forward<&sqlite3_vfs::xDlOpen>::Call;
  vfs.xDlError = Forward<&sqlite3_vfs::xDlError>::Call;
  vfs.xDlSym = Forward<&sqlite3_vfs::xDlSym>::Call;
  vfs.xDlClose = Forward<&sqlite3_vfs::xDlClose>::Call;
  vfs.xRandomness = Forward<&sqlite3_vfs::xRandomness>::Call;
  vfs.xSleep = Forward<&sqlite3_vfs::xSleep>::Call;
  vfs.xCurrentTime = Forward<&sqlite3_vfs::xCurrentTime>::Call;
  vfs.xGetLastError = Forward<&sqlite3_vfs::xGetLastError>::Call;
  vfs.xCurrentTimeInt64 = Forward<&sqlite3_vfs::xCurrentTimeInt64>::Call;
  return vfs;
}

SqliteFiles::SqliteFiles(FileSystem& files)
    : m_Files(files), m_Name(MakeName(this)), m_Real(FindReal()) {
  if (m_Real == nullptr) {
    FED_Failure::Throw("220100000007", "|%P|QeltaFileStorage|SqliteFiles",
                       "SQLite has no way to files of its own. Use a build of it for this system.");
  }
  m_Vfs = Shim::MakeVfs(*this);
  if (sqlite3_vfs_register(&m_Vfs, 0) != SQLITE_OK) throw std::bad_alloc();
}

SqliteFiles::~SqliteFiles() { sqlite3_vfs_unregister(&m_Vfs); }

}  // namespace qelta
