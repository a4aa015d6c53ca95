#pragma once

#include <FED_Exception.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace qelta {

/// A file that appears under its name when it is whole, or not at all.
///
/// It is written under a temporary name in the same folder. Whoever destroys the object before
/// Commit removes what was written; a file that stood under the name is still there then.
class QeltaOutputFile {
 public:
  /// `path` in UTF-8. Fails when the file cannot be made, or when something that is no plain file
  /// has this name.
  explicit QeltaOutputFile(const std::string& path);
  ~QeltaOutputFile();
  QeltaOutputFile(const QeltaOutputFile&) = delete;
  QeltaOutputFile& operator=(const QeltaOutputFile&) = delete;

  /// Appends, or overwrites what was written after Seek.
  void Write(const void* data, std::size_t bytes);
  void Write(const std::string& text) { Write(text.data(), text.size()); }

  /// Where the next byte goes, from the start of the file.
  std::uint64_t GetPosition() const { return m_Position; }
  void Seek(std::uint64_t position);

  /// Where the bytes are until Commit; complete after Close.
  const std::filesystem::path& GetTemporaryPath() const { return m_Temporary; }

  /// Ends the writing. Does nothing when it has ended.
  void Close();

  /// Ends the writing and gives the file its name, in place of one that has it.
  void Commit();

  /// Whether a failure came from making or writing such a file: no room, no permission.
  static bool IsFailure(const FED_Exception& failure);

 private:
  [[noreturn]] void Fail(const std::string& cause) const;
  [[noreturn]] void FailBySystem() const;

  std::filesystem::path m_Path;
  std::filesystem::path m_Temporary;
  std::ofstream m_File;
  std::uint64_t m_Position = 0;
  bool m_IsCommitted = false;
};

}  // namespace qelta
