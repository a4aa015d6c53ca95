#pragma once

#include <filesystem>
#include <string>

#include "Hdf5Handle.h"

namespace qelta {

/// A new HDF5 file that gets its name when it is whole, and leaves nothing behind before that.
class Hdf5OutputFile {
 public:
  /// Makes the file under a name of its own beside `path`.
  explicit Hdf5OutputFile(const std::string& path);
  ~Hdf5OutputFile();
  Hdf5OutputFile(const Hdf5OutputFile&) = delete;
  Hdf5OutputFile& operator=(const Hdf5OutputFile&) = delete;

  hid_t Get() const { return m_File; }

  /// Throws an Hdf5Problem when something could not be written; only this tells.
  void Check() const;

  /// Closes the file, whatever of it is still open, and renames it.
  void Commit();

 private:
  std::filesystem::path m_Path;
  std::filesystem::path m_Temporary;
  int m_Error = 0;
  hid_t m_File = -1;
  bool m_IsWhole = false;
};

}  // namespace qelta
