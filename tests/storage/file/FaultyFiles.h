#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "ForwardingFiles.h"
#include "IoFailure.h"

namespace qelta::test {

/// What is counted, and can fail.
enum class FileOperation {
  OPEN,  ///< adoptions included
  READ,
  WRITE,
  SYNC,  ///< of files
  SYNC_DIRECTORY,
  TRUNCATE,
  LOCK,  ///< what BeforeLock announces included
  NAME,  ///< making, renaming and removing
  LOOK   ///< GetSize, GetKind, List, IsSame, IsLocked
};

struct Fault {
  std::uint64_t after = 0;  ///< how many operations of these kinds succeed first, from SetFault on
  IoProblem problem = IoProblem::OTHER;
  bool lasts = false;                ///< fails ever after, not just once
  std::vector<FileOperation> kinds;  ///< empty means all
};

/// A file system that counts operations, and fails where it is told to. A write that fails has
/// written its first half; all else that fails has done nothing. Outlives its files.
class FaultyFiles : public ForwardingFiles {
 public:
  using ForwardingFiles::ForwardingFiles;

  void SetFault(const Fault& fault);
  void ClearFault() { m_IsArmed = false; }

  std::uint64_t GetCount() const;
  std::uint64_t GetCount(FileOperation kind) const {
    return m_Counts[static_cast<std::size_t>(kind)];
  }
  /// How many operations have failed on purpose.
  std::uint64_t GetFailures() const { return m_Failures; }

  /// Counts an operation; true when it is to fail.
  bool Count(FileOperation kind);
  [[noreturn]] void Fail(const std::string& path) const;
  void CountOrFail(FileOperation kind, const std::string& path);

  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override;
  std::unique_ptr<File> Adopt(const std::string& path, std::unique_ptr<File> file) override;
  PathKind GetKind(const std::string& path) override;
  std::vector<std::string> List(const std::string& path) override;
  void MakeDirectory(const std::string& path) override;
  void Rename(const std::string& from, const std::string& to) override;
  void Remove(const std::string& path) override;
  void RemoveDirectory(const std::string& path) override;
  void SyncDirectory(const std::string& path) override;
  bool IsSame(File& file, const std::string& path) override;

 private:
  std::array<std::uint64_t, 9> m_Counts{};
  std::uint64_t m_Failures = 0;
  Fault m_Fault;
  bool m_IsArmed = false;
};

}  // namespace qelta::test
