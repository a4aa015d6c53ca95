#pragma once

#include <cstddef>
#include <filesystem>

#include "TemporaryFolder.h"

namespace qelta::bench {

/// A large text result file in the folder for temporary files: one mesh and many frames, each with
/// displacements and stresses at every node. Removed when the program ends.
class FrdSample {
 public:
  /// Written when it is asked for first.
  static const FrdSample& Instance();

  const std::filesystem::path& GetPath() const { return m_Path; }
  std::size_t GetBytes() const { return m_Bytes; }

 private:
  FrdSample();

  TemporaryFolder m_Folder;
  std::filesystem::path m_Path;
  std::size_t m_Bytes = 0;
};

}  // namespace qelta::bench
