#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "QeltaOutputFile.h"

namespace qelta {

/// Files of one folder that appear together, when all are whole, or not at all.
///
/// Other files in the folder stay; the folder itself is made when it is not there, and removed
/// again when nothing comes of it.
class QeltaOutputFolder {
 public:
  explicit QeltaOutputFolder(const std::filesystem::path& path);
  ~QeltaOutputFolder();
  QeltaOutputFolder(const QeltaOutputFolder&) = delete;
  QeltaOutputFolder& operator=(const QeltaOutputFolder&) = delete;

  /// A file of this name in the folder; it lives as long as this object. Its writer closes it.
  QeltaOutputFile& Add(const std::string& name);

  /// Gives the files their names.
  void Commit();

 private:
  std::filesystem::path m_Path;
  std::vector<std::unique_ptr<QeltaOutputFile>> m_Files;
};

}  // namespace qelta
