#pragma once

#include <FED_Database.h>
#include <FED_Exception.h>
#include <QeltaFieldText.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace qelta {

/// Called now and then with the bytes of records that are done and those that there are. What it
/// throws ends the work and passes to the caller.
using QeltaHdf5Progress = std::function<void(std::uint64_t done, std::uint64_t total)>;

struct QeltaHdf5ExportOptions {
  int deflateLevel = 0;  ///< 1 to 9 compresses, the highest best; 0 does not
};

/// Writes the blocks of some keys, with the id maps of the database, into an HDF5 file.
/// docs/hdf5.md says what stands where.
///
/// A block is written once, under its own key; what else of its keys is asked for becomes an alias.
/// Nothing is lost: QeltaHdf5File brings it all back. The file is written beside `path`, as `path`
/// with ".part" behind it, and renamed when it is whole; one that stands there is replaced. After a
/// failure nothing is left of it. Fails when a key has no block.
///
/// Memory for some MiB beside what the database holds, whatever the size of the blocks; for a list
/// or string longer than that, twice its length.
void ExportHdf5(const FED_Database& database, const std::vector<FED_DataDescriptor>& keys,
                const std::string& path, const QeltaHdf5Progress& progress = {},
                const QeltaHdf5ExportOptions& options = {});

/// An HDF5 file that ExportHdf5 has written, open for reading.
///
/// What is damaged, foreign or of a newer version is a failure that names file and place.
class QeltaHdf5File {
 public:
  /// Whether the file of this name begins as HDF5 files do.
  static bool IsOne(const std::string& path);

  /// Reads which blocks there are.
  explicit QeltaHdf5File(const std::string& path);
  ~QeltaHdf5File();
  QeltaHdf5File(const QeltaHdf5File&) = delete;
  QeltaHdf5File& operator=(const QeltaHdf5File&) = delete;

  /// The keys of all blocks, aliases included, in the order of the file.
  std::vector<FED_DataDescriptor> GetKeys() const;

  /// Reads the blocks of some of these keys into an initialised database, under changed keys.
  /// Blocks that stand there are replaced; further keys of one block become aliases.
  ///
  /// The target first learns all ids and names of the file. Where it gives them other indices,
  /// records and references move along, as QeltaBlockCopy has it; it is a failure when a record of
  /// a catalogued kind then has no id. Fails before anything is changed when two keys become one.
  /// After any other failure the target holds a part: do not save it.
  void Import(const std::vector<FED_DataDescriptor>& keys, const QeltaKeyChanges& changes,
              FED_Database& target, const QeltaHdf5Progress& progress = {}) const;

 private:
  struct Content;
  std::unique_ptr<Content> m_Content;
};

/// Whether a failure of the above came from the system or a device: no room, no permission. Others
/// come from the caller's request or from the file.
bool IsHdf5DeviceFailure(const FED_Exception& failure);

}  // namespace qelta
