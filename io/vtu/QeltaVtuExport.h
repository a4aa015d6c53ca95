#pragma once

#include <FED_Database.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qelta {

struct QeltaVtuOptions {
  bool compresses = false;
  /// Moves the nodes by so many times the displacement, or the mode shape, of their step.
  std::optional<double> deformation;
  /// Called now and then with the bytes that are done and those that there are.
  std::function<void(std::uint64_t done, std::uint64_t total)> onProgress;
};

/// Writes blocks as VTK files, which ParaView reads. docs/export.md says what goes where.
///
/// A file holds one mesh at one step. Values at nodes and elements stand with the mesh that they
/// belong to (QeltaMeshes), which need not be among the blocks; other numbers stand beside it.
/// Everything is read in batches when it is written; memory for a few of them. The database must
/// outlive this object and not change meanwhile.
class QeltaVtuExport {
 public:
  /// `keys` are those of blocks. Fails when values belong to nodes or elements and there is no
  /// mesh, or when nodes are to move at a step without a displacement.
  QeltaVtuExport(const FED_Database& database, const std::vector<FED_DataDescriptor>& keys,
                 QeltaVtuOptions options);
  ~QeltaVtuExport();
  QeltaVtuExport(const QeltaVtuExport&) = delete;
  QeltaVtuExport& operator=(const QeltaVtuExport&) = delete;

  /// 0 when nothing that was chosen depends on a step.
  std::size_t GetStepCount() const;
  std::size_t GetFileCount() const;

  /// Blocks that hold nothing that such a file can take: texts, lists, groups.
  const std::vector<FED_DataDescriptor>& GetLeftOut() const;

  /// Writes the one file that there is.
  void WriteFile(const std::string& path);

  /// Writes all files into a folder beside `path`, `NAME_vtu` for NAME.pvd, and then `path`, which
  /// gives them their times. Files of these names are replaced, others in the folder stay.
  void WriteCollection(const std::string& path);

  /// Records of what was written that belong to no node or element of their mesh, and so are in no
  /// file.
  std::uint64_t GetStrayCount() const;

 private:
  class Plan;
  std::unique_ptr<Plan> m_Plan;
};

}  // namespace qelta
