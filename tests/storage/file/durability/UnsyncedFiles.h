#pragma once

#include <memory>
#include <string>
#include <utility>

#include "ForwardingFiles.h"

namespace qelta::test {

/// A file system that never waits for the disk: what it syncs survives the program, not the
/// machine. May say that no place is local, so that SQLite works without a write-ahead log.
class UnsyncedFiles : public ForwardingFiles {
 public:
  explicit UnsyncedFiles(bool hasLocalPlaces = true)
      : ForwardingFiles(SystemFiles()), m_HasLocalPlaces(hasLocalPlaces) {}

  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override {
    return std::make_unique<UnsyncedFile>(m_Real.Open(path, mode));
  }
  std::unique_ptr<File> Adopt(const std::string& path, std::unique_ptr<File> file) override {
    return std::make_unique<UnsyncedFile>(m_Real.Adopt(path, std::move(file)));
  }
  void SyncDirectory(const std::string&) override {}
  bool IsLocal(const std::string& directory) override {
    return m_HasLocalPlaces && m_Real.IsLocal(directory);
  }

 private:
  class UnsyncedFile final : public ForwardingFile {
   public:
    using ForwardingFile::ForwardingFile;
    void Sync() override {}
  };

  bool m_HasLocalPlaces;
};

}  // namespace qelta::test
