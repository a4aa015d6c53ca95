#include "TemporaryFolder.h"

#include <random>
#include <string>
#include <system_error>

namespace qelta::bench {

TemporaryFolder::TemporaryFolder()
    : m_Path(std::filesystem::temp_directory_path() /
             ("qelta_bench_" + std::to_string(std::random_device()()))) {
  std::filesystem::create_directory(m_Path);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_Path, ignored);
}

}  // namespace qelta::bench
