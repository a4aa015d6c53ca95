#include "QeltaOutputFolder.h"

#include <system_error>

namespace qelta {

// What is wrong with the folder shows when the first file is made in it.
QeltaOutputFolder::QeltaOutputFolder(const std::filesystem::path& path) : m_Path(path) {
  std::error_code ignored;
  std::filesystem::create_directory(m_Path, ignored);
}

// A folder that holds anything stays: it cannot be removed.
QeltaOutputFolder::~QeltaOutputFolder() {
  m_Files.clear();
  std::error_code ignored;
  if (std::filesystem::is_directory(m_Path, ignored)) std::filesystem::remove(m_Path, ignored);
}

QeltaOutputFile& QeltaOutputFolder::Add(const std::string& name) {
  const std::filesystem::path path = m_Path / std::filesystem::u8path(name);
  m_Files.push_back(std::make_unique<QeltaOutputFile>(path.u8string()));
  return *m_Files.back();
}

void QeltaOutputFolder::Commit() {
  for (const auto& file : m_Files) file->Commit();
}

}  // namespace qelta
