#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>

namespace qelta::test {

/// A directory of its own among the temporary files, removed with all that is in it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    static std::atomic<unsigned> count{0};
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    m_Path = std::filesystem::temp_directory_path() /
             ("qelta-" + std::to_string(now) + "-" + std::to_string(++count));
    std::filesystem::create_directories(m_Path);
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_Path, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  std::string GetPath() const { return m_Path.generic_u8string(); }
  std::string operator/(const std::string& name) const { return GetPath() + "/" + name; }

 private:
  std::filesystem::path m_Path;
};

}  // namespace qelta::test
