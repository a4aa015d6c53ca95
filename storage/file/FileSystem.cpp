#include "FileSystem.h"

namespace qelta {

std::unique_ptr<File> FileSystem::Adopt(const std::string&, std::unique_ptr<File> file) {
  return file;
}

std::string FileSystem::GetEnginePath(const std::string&) { return {}; }

std::string ParentOf(const std::string& path) {
  const std::size_t last = path.find_last_not_of('/');
  if (last == std::string::npos) return path.empty() ? "." : "/";
  const std::size_t slash = path.find_last_of('/', last);
  if (slash == std::string::npos) return ".";
  const std::size_t end = path.find_last_not_of('/', slash);
  return end == std::string::npos ? "/" : path.substr(0, end + 1);
}

}  // namespace qelta
