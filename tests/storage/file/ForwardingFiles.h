#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "FileSystem.h"

namespace qelta::test {

/// A file that does what another one does. Fakes override what they change.
class ForwardingFile : public File {
 public:
  explicit ForwardingFile(std::unique_ptr<File> real) : m_Real(std::move(real)) {}

  std::size_t ReadAt(std::uint64_t offset, void* data, std::size_t size) override {
    return m_Real->ReadAt(offset, data, size);
  }
  void WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    m_Real->WriteAt(offset, data, size);
  }
  void Sync() override { m_Real->Sync(); }
  void Truncate(std::uint64_t size) override { m_Real->Truncate(size); }
  std::uint64_t GetSize() override { return m_Real->GetSize(); }
  bool TryLock(std::uint64_t first, std::uint64_t count, LockKind kind) override {
    return m_Real->TryLock(first, count, kind);
  }
  void Unlock(std::uint64_t first, std::uint64_t count) override { m_Real->Unlock(first, count); }
  bool IsLocked(std::uint64_t first, std::uint64_t count) override {
    return m_Real->IsLocked(first, count);
  }
  void BeforeLock() override { m_Real->BeforeLock(); }

  File& GetReal() { return *m_Real; }

 private:
  std::unique_ptr<File> m_Real;
};

/// A file system that does what another one does, which outlives it. Every file that a fake opens
/// or adopts must be a ForwardingFile.
class ForwardingFiles : public FileSystem {
 public:
  explicit ForwardingFiles(FileSystem& real) : m_Real(real) {}

  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override {
    return std::make_unique<ForwardingFile>(m_Real.Open(path, mode));
  }
  std::unique_ptr<File> Adopt(const std::string& path, std::unique_ptr<File> file) override {
    return std::make_unique<ForwardingFile>(m_Real.Adopt(path, std::move(file)));
  }
  std::string GetEnginePath(const std::string& path) override { return m_Real.GetEnginePath(path); }
  PathKind GetKind(const std::string& path) override { return m_Real.GetKind(path); }
  std::vector<std::string> List(const std::string& path) override { return m_Real.List(path); }
  void MakeDirectory(const std::string& path) override { m_Real.MakeDirectory(path); }
  void Rename(const std::string& from, const std::string& to) override { m_Real.Rename(from, to); }
  void Remove(const std::string& path) override { m_Real.Remove(path); }
  void RemoveDirectory(const std::string& path) override { m_Real.RemoveDirectory(path); }
  void SyncDirectory(const std::string& path) override { m_Real.SyncDirectory(path); }
  bool IsWritable(const std::string& directory) override { return m_Real.IsWritable(directory); }
  bool IsLocal(const std::string& directory) override { return m_Real.IsLocal(directory); }
  bool IsSame(File& file, const std::string& path) override {
    return m_Real.IsSame(dynamic_cast<ForwardingFile&>(file).GetReal(), path);
  }
  std::string DescribeProcess() override { return m_Real.DescribeProcess(); }

 protected:
  FileSystem& m_Real;
};

}  // namespace qelta::test
