#pragma once

#include <filesystem>

namespace qelta::bench {

/// A folder of its own among the temporary files, removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& GetPath() const { return m_Path; }

 private:
  std::filesystem::path m_Path;
};

}  // namespace qelta::bench
