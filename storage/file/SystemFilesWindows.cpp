#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <system_error>

#include "FileSystem.h"
#include "IoFailure.h"
#include "QeltaStringUtil.h"

namespace qelta {
namespace {

constexpr DWORD kDiskQuotaExceeded = 1295;  // older headers of the system lack it

IoProblem ToProblem(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_NETPATH:
      return IoProblem::NOT_FOUND;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
    case ERROR_DIR_NOT_EMPTY:
    case ERROR_DIRECTORY:
      return IoProblem::EXISTS;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      return IoProblem::DENIED;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kDiskQuotaExceeded:
      return IoProblem::NO_SPACE;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return IoProblem::LOCKED;
    default:
      return IoProblem::OTHER;
  }
}

[[noreturn]] void Fail(const char* action, const std::string& path, DWORD error = GetLastError()) {
  const auto code = static_cast<int>(error);
  IoFailure::Throw(
      ToProblem(error), action, path,
      "system error " + std::to_string(code) + ", " + std::system_category().message(code));
}

void Require(const char* action, const std::string& path, BOOL isDone) {
  if (isDone == 0) Fail(action, path);
}

std::string ToUtf8(const std::wstring& wide) {
  const auto length = static_cast<int>(wide.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

// With this prefix a path may be longer than 260 characters, and must be absolute.
std::wstring AddPrefix(const std::wstring& absolute) {
  if (absolute.compare(0, 4, L"\\\\?\\") == 0 || absolute.compare(0, 4, L"\\\\.\\") == 0) {
    return absolute;
  }
  if (absolute.compare(0, 2, L"\\\\") == 0) return L"\\\\?\\UNC\\" + absolute.substr(2);
  return L"\\\\?\\" + absolute;
}

std::wstring ToSystem(const std::string& path) {
  std::wstring wide;
  if (!QeltaStringUtil::ToWide(path, wide)) {
    IoFailure::Throw(IoProblem::NOT_FOUND, "find", path, "the name is not UTF-8");
  }
  std::replace(wide.begin(), wide.end(), L'/', L'\\');
  std::wstring absolute(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
  const DWORD length =
      GetFullPathNameW(wide.c_str(), static_cast<DWORD>(absolute.size()), absolute.data(), nullptr);
  if (length == 0 || length >= absolute.size()) Fail("find", path);
  absolute.resize(length);
  return AddPrefix(absolute);
}

// The system calls it a lack of rights to open a directory as a file.
DWORD GetOpenError(const std::string& path) {
  const DWORD error = GetLastError();
  const DWORD attributes = GetFileAttributesW(ToSystem(path).c_str());
  const bool isDirectory =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return error == ERROR_ACCESS_DENIED && isDirectory ? ERROR_DIRECTORY : error;
}

class Handle {
 public:
  Handle(const std::string& path, DWORD access, DWORD disposition, DWORD flags)
      : m_Handle(CreateFileW(ToSystem(path).c_str(), access,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             disposition, flags, nullptr)) {
    if (m_Handle == INVALID_HANDLE_VALUE) Fail("open", path, GetOpenError(path));
  }
  ~Handle() { CloseHandle(m_Handle); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  HANDLE Get() const { return m_Handle; }

  BY_HANDLE_FILE_INFORMATION GetInformation(const std::string& path) const {
    BY_HANDLE_FILE_INFORMATION information{};
    Require("look at", path, GetFileInformationByHandle(m_Handle, &information));
    return information;
  }

 private:
  HANDLE m_Handle;
};

OVERLAPPED AtOffset(std::uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset & 0xffffffffU);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

DWORD ToAccess(OpenMode mode) {
  return mode == OpenMode::READ ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
}

class WindowsFile final : public File {
 public:
  WindowsFile(const std::string& path, OpenMode mode)
      : m_Path(path),
        m_Handle(path, ToAccess(mode), mode == OpenMode::CREATE ? OPEN_ALWAYS : OPEN_EXISTING,
                 FILE_ATTRIBUTE_NORMAL) {}

  std::size_t ReadAt(std::uint64_t offset, void* data, std::size_t size) override {
    std::size_t done = 0;
    while (done < size) {
      OVERLAPPED place = AtOffset(offset + done);
      DWORD count = 0;
      if (ReadFile(m_Handle.Get(), static_cast<char*>(data) + done, Portion(size - done), &count,
                   &place) == 0) {
        if (GetLastError() == ERROR_HANDLE_EOF) break;
        Fail("read", m_Path);
      }
      if (count == 0) break;
      done += count;
    }
    return done;
  }

  void WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    std::size_t done = 0;
    while (done < size) {
      OVERLAPPED place = AtOffset(offset + done);
      DWORD count = 0;
      Require("write", m_Path,
              WriteFile(m_Handle.Get(), static_cast<const char*>(data) + done, Portion(size - done),
                        &count, &place));
      if (count == 0) Fail("write", m_Path, ERROR_DISK_FULL);
      done += count;
    }
  }

  void Sync() override { Require("sync", m_Path, FlushFileBuffers(m_Handle.Get())); }

  void Truncate(std::uint64_t size) override {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    Require("truncate", m_Path,
            SetFileInformationByHandle(m_Handle.Get(), FileEndOfFileInfo, &end, sizeof end));
  }

  std::uint64_t GetSize() override {
    LARGE_INTEGER size{};
    Require("look at", m_Path, GetFileSizeEx(m_Handle.Get(), &size));
    return static_cast<std::uint64_t>(size.QuadPart);
  }

  bool TryLock(std::uint64_t first, std::uint64_t count, LockKind kind) override {
    const DWORD exclusive = kind == LockKind::EXCLUSIVE ? LOCKFILE_EXCLUSIVE_LOCK : 0;
    OVERLAPPED place = AtOffset(first);
    const OVERLAPPED length = AtOffset(count);
    if (LockFileEx(m_Handle.Get(), exclusive | LOCKFILE_FAIL_IMMEDIATELY, 0, length.Offset,
                   length.OffsetHigh, &place) != 0) {
      return true;
    }
    const DWORD error = GetLastError();
    if (error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING) return false;
    Fail("lock", m_Path, error);
  }

  void Unlock(std::uint64_t first, std::uint64_t count) override {
    OVERLAPPED place = AtOffset(first);
    const OVERLAPPED length = AtOffset(count);
    Require("unlock", m_Path,
            UnlockFileEx(m_Handle.Get(), 0, length.Offset, length.OffsetHigh, &place));
  }

  // The system has no such question.
  bool IsLocked(std::uint64_t first, std::uint64_t count) override {
    if (!TryLock(first, count, LockKind::EXCLUSIVE)) return true;
    Unlock(first, count);
    return false;
  }

  BY_HANDLE_FILE_INFORMATION GetInformation() const { return m_Handle.GetInformation(m_Path); }

 private:
  static DWORD Portion(std::size_t size) {
    return static_cast<DWORD>(std::min(size, std::size_t{1} << 30));
  }

  std::string m_Path;
  Handle m_Handle;
};

class Search {
 public:
  explicit Search(const std::string& path)
      : m_Handle(FindFirstFileW((ToSystem(path) + L"\\*").c_str(), &m_Found)) {
    if (m_Handle == INVALID_HANDLE_VALUE) Fail("list", path);
  }
  ~Search() { FindClose(m_Handle); }
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;

  std::wstring GetName() const { return m_Found.cFileName; }

  bool MoveOn(const std::string& path) {
    if (FindNextFileW(m_Handle, &m_Found) != 0) return true;
    if (GetLastError() != ERROR_NO_MORE_FILES) Fail("list", path);
    return false;
  }

 private:
  WIN32_FIND_DATAW m_Found{};
  HANDLE m_Handle;
};

class WindowsFiles final : public FileSystem {
 public:
  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override {
    return std::make_unique<WindowsFile>(path, mode);
  }

  // The engine adds endings to names, and has no prefix of its own for those that get too long.
  std::string GetEnginePath(const std::string& path) override {
    const std::wstring system = ToSystem(path);
    return system.size() < MAX_PATH - 20 ? std::string() : ToUtf8(system);
  }

  PathKind GetKind(const std::string& path) override {
    const DWORD attributes = GetFileAttributesW(ToSystem(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
      if (ToProblem(GetLastError()) != IoProblem::NOT_FOUND) Fail("look at", path);
      return PathKind::NOTHING;
    }
    if ((attributes & FILE_ATTRIBUTE_DEVICE) != 0) return PathKind::OTHER;
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? PathKind::DIRECTORY : PathKind::FILE;
  }

  std::vector<std::string> List(const std::string& path) override {
    std::vector<std::string> names;
    Search search(path);
    do {
      const std::wstring name = search.GetName();
      if (name != L"." && name != L"..") names.push_back(ToUtf8(name));
    } while (search.MoveOn(path));
    return names;
  }

  void MakeDirectory(const std::string& path) override {
    Require("make the directory", path, CreateDirectoryW(ToSystem(path).c_str(), nullptr));
  }

  void Rename(const std::string& from, const std::string& to) override {
    Require("rename", from + "' to '" + to,
            MoveFileExW(ToSystem(from).c_str(), ToSystem(to).c_str(),
                        MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
  }

  void Remove(const std::string& path) override {
    Require("remove", path, DeleteFileW(ToSystem(path).c_str()));
  }

  void RemoveDirectory(const std::string& path) override {
    Require("remove the directory", path, RemoveDirectoryW(ToSystem(path).c_str()));
  }

  // The system's journal keeps names in order; a directory cannot be flushed.
  void SyncDirectory(const std::string&) override {}

  // Permissions are too rich to be read; trying is certain.
  bool IsWritable(const std::string& directory) override {
    const std::wstring probe =
        ToSystem(directory) + L"\\probe-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE handle =
        CreateFileW(probe.c_str(), GENERIC_WRITE, FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_EXISTS;
    CloseHandle(handle);
    return true;
  }

  bool IsLocal(const std::string& directory) override {
    std::array<wchar_t, MAX_PATH + 1> volume{};
    std::array<wchar_t, MAX_PATH + 1> kind{};
    const auto size = static_cast<DWORD>(volume.size());
    return GetVolumePathNameW(ToSystem(directory).c_str(), volume.data(), size) != 0 &&
           GetDriveTypeW(volume.data()) == DRIVE_FIXED &&
           GetVolumeInformationW(volume.data(), nullptr, 0, nullptr, nullptr, nullptr, kind.data(),
                                 size) != 0 &&
           std::wstring(kind.data()) == L"NTFS";
  }

  bool IsSame(File& file, const std::string& path) override {
    const BY_HANDLE_FILE_INFORMATION mine = dynamic_cast<WindowsFile&>(file).GetInformation();
    if (GetKind(path) != PathKind::FILE) return false;
    const Handle other(path, 0, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    const BY_HANDLE_FILE_INFORMATION theirs = other.GetInformation(path);
    return mine.dwVolumeSerialNumber == theirs.dwVolumeSerialNumber &&
           mine.nFileIndexHigh == theirs.nFileIndexHigh &&
           mine.nFileIndexLow == theirs.nFileIndexLow;
  }

  std::string DescribeProcess() override {
    std::array<wchar_t, 256> host{};
    auto size = static_cast<DWORD>(host.size());
    if (GetComputerNameExW(ComputerNameDnsHostname, host.data(), &size) == 0) host = {L'?'};
    return "process " + std::to_string(GetCurrentProcessId()) + " on host " + ToUtf8(host.data());
  }
};

}  // namespace

FileSystem& SystemFiles() {
  static FileSystem& files = *new WindowsFiles;  // static objects may outlive a static one
  return files;
}

std::uint64_t FileSystem::GetForkCount() { return 0; }

}  // namespace qelta
