#pragma once

#include <QeltaHdf5.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace qelta::test {

/// A folder of its own for each test, and the path of a file in it.
struct Hdf5 : testing::Test {
  Hdf5() {
    static int count = 0;
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    folder = std::filesystem::path(testing::TempDir()) / (name + std::to_string(++count));
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    path = (folder / "file.h5").string();
  }
  ~Hdf5() override { std::filesystem::remove_all(folder); }

  std::filesystem::path folder;
  std::string path;
};

inline void ImportAll(const std::string& path, FED_Database& target) {
  const QeltaHdf5File file(path);
  file.Import(file.GetKeys(), {}, target);
}

}  // namespace qelta::test
