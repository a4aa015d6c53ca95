#include "FaultyFiles.h"

#include <algorithm>
#include <numeric>

namespace qelta::test {
namespace {

class FaultyFile final : public ForwardingFile {
 public:
  FaultyFile(FaultyFiles& owner, std::string path, std::unique_ptr<File> real)
      : ForwardingFile(std::move(real)), m_Owner(owner), m_Path(std::move(path)) {}

  std::size_t ReadAt(std::uint64_t offset, void* data, std::size_t size) override {
    m_Owner.CountOrFail(FileOperation::READ, m_Path);
    return GetReal().ReadAt(offset, data, size);
  }
  void WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    const bool fails = m_Owner.Count(FileOperation::WRITE);
    GetReal().WriteAt(offset, data, fails ? size / 2 : size);
    if (fails) m_Owner.Fail(m_Path);
  }
  void Sync() override {
    m_Owner.CountOrFail(FileOperation::SYNC, m_Path);
    GetReal().Sync();
  }
  void Truncate(std::uint64_t size) override {
    m_Owner.CountOrFail(FileOperation::TRUNCATE, m_Path);
    GetReal().Truncate(size);
  }
  std::uint64_t GetSize() override {
    m_Owner.CountOrFail(FileOperation::LOOK, m_Path);
    return GetReal().GetSize();
  }
  bool TryLock(std::uint64_t first, std::uint64_t count, LockKind kind) override {
    m_Owner.CountOrFail(FileOperation::LOCK, m_Path);
    return GetReal().TryLock(first, count, kind);
  }
  bool IsLocked(std::uint64_t first, std::uint64_t count) override {
    m_Owner.CountOrFail(FileOperation::LOOK, m_Path);
    return GetReal().IsLocked(first, count);
  }
  void BeforeLock() override {
    m_Owner.CountOrFail(FileOperation::LOCK, m_Path);
    GetReal().BeforeLock();
  }

 private:
  FaultyFiles& m_Owner;
  std::string m_Path;
};

}  // namespace

void FaultyFiles::SetFault(const Fault& fault) {
  m_Fault = fault;
  m_IsArmed = true;
}

std::uint64_t FaultyFiles::GetCount() const {
  return std::accumulate(m_Counts.begin(), m_Counts.end(), std::uint64_t{0});
}

bool FaultyFiles::Count(FileOperation kind) {
  ++m_Counts[static_cast<std::size_t>(kind)];
  const auto& kinds = m_Fault.kinds;
  const bool counts = kinds.empty() || std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
  if (!m_IsArmed || !counts) return false;
  if (m_Fault.after > 0) {
    --m_Fault.after;
    return false;
  }
  m_IsArmed = m_Fault.lasts;
  ++m_Failures;
  return true;
}

void FaultyFiles::Fail(const std::string& path) const {
  IoFailure::Throw(m_Fault.problem, "use", path, "this fails on purpose");
}

void FaultyFiles::CountOrFail(FileOperation kind, const std::string& path) {
  if (Count(kind)) Fail(path);
}

std::unique_ptr<File> FaultyFiles::Open(const std::string& path, OpenMode mode) {
  CountOrFail(FileOperation::OPEN, path);
  return std::make_unique<FaultyFile>(*this, path, m_Real.Open(path, mode));
}

std::unique_ptr<File> FaultyFiles::Adopt(const std::string& path, std::unique_ptr<File> file) {
  CountOrFail(FileOperation::OPEN, path);
  return std::make_unique<FaultyFile>(*this, path, m_Real.Adopt(path, std::move(file)));
}

PathKind FaultyFiles::GetKind(const std::string& path) {
  CountOrFail(FileOperation::LOOK, path);
  return m_Real.GetKind(path);
}

std::vector<std::string> FaultyFiles::List(const std::string& path) {
  CountOrFail(FileOperation::LOOK, path);
  return m_Real.List(path);
}

void FaultyFiles::MakeDirectory(const std::string& path) {
  CountOrFail(FileOperation::NAME, path);
  m_Real.MakeDirectory(path);
}

void FaultyFiles::Rename(const std::string& from, const std::string& to) {
  CountOrFail(FileOperation::NAME, from);
  m_Real.Rename(from, to);
}

void FaultyFiles::Remove(const std::string& path) {
  CountOrFail(FileOperation::NAME, path);
  m_Real.Remove(path);
}

void FaultyFiles::RemoveDirectory(const std::string& path) {
  CountOrFail(FileOperation::NAME, path);
  m_Real.RemoveDirectory(path);
}

void FaultyFiles::SyncDirectory(const std::string& path) {
  CountOrFail(FileOperation::SYNC_DIRECTORY, path);
  m_Real.SyncDirectory(path);
}

bool FaultyFiles::IsSame(File& file, const std::string& path) {
  CountOrFail(FileOperation::LOOK, path);
  return ForwardingFiles::IsSame(file, path);
}

}  // namespace qelta::test
