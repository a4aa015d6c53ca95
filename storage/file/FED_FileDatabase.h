#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "FED_Exception.h"
#include "FED_StorageDatabase.h"
#include "QeltaStorageExport.h"

namespace qelta {
class FileSession;
class FileSystem;
}  // namespace qelta

/// A database that keeps its data: a directory that holds a catalogue and the content of the
/// blocks. FORMAT.md beside this file describes it byte by byte.
///
/// Default-constructed, then `InitDb` once; the name is the path of the directory. `READ_WRITE` and
/// `CREATE` make this object the only writer, in this process and all others; a second one fails
/// with a message that says who is there. Any number of readers (`READ_ONLY`) look on meanwhile.
///
/// `Save` makes everything durable at once: blocks, names, id maps. After a crash of the program or
/// of the machine the last save that returned is there, or the one that was being made. What was
/// not saved is discarded by `CloseDb` and by the destructor, which say so in the log.
///
/// A reader sees the database as it was when it opened it, whatever the writer does, until
/// `Refresh`. Readers that stay where they are keep the writer from reusing the space of what they
/// see.
///
/// Content is loaded when it is touched, into a cache of the size given to `InitDb` (at least four
/// chunks of 256 KiB; 0 means 256 MiB), and leaves it, written, when others need the room: blocks
/// may be larger than memory. Every chunk carries a checksum that is verified when it is read;
/// damage is a failure that names the block, never wrong data.
///
/// When a save fails for want of space, what was not saved is still here, and the next save tries
/// again. When the system fails to sync, nothing is known about what is on the disk: every
/// operation fails from then on until the database is opened anew. After a fork the database works
/// in the parent only. One thread at a time.
class QELTA_FILE_STORAGE_EXPORT FED_FileDatabase : public FED_StorageDatabase {
 public:
  /// Called now and then on long work with the bytes that are done and those that there are; false
  /// ends the work early. May be empty. Must not change or close the database.
  using Progress = std::function<bool(std::uint64_t done, std::uint64_t total)>;

  struct Report {
    std::uint64_t blocks = 0;           ///< blocks that were looked at
    std::uint64_t bytes = 0;            ///< bytes of content that were looked at
    std::vector<std::string> problems;  ///< one line each, naming the block
    bool isComplete = true;             ///< false when `Progress` ended the work
  };

  FED_FileDatabase();
  /// Reaches the system through `files`, which outlives the object.
  explicit FED_FileDatabase(qelta::FileSystem& files);
  ~FED_FileDatabase() override;
  FED_FileDatabase(const FED_FileDatabase&) = delete;
  FED_FileDatabase& operator=(const FED_FileDatabase&) = delete;

  /// READ_ONLY fails when there is no database, READ_WRITE makes one. CREATE starts empty: a
  /// database that stands there is emptied by the first save, a damaged one is renamed aside;
  /// a directory or file that is no database is a failure.
  void OpenDb(FED_DatabaseDefs::AccessMode mode, std::uint64_t cacheSize, const std::wstring& name,
              const FED_IdMapsPool& pool) override;
  void CloseDb() override;

  FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor, int properties,
                                 std::int64_t recordCount, const std::string& format) override;
  FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor,
                                 std::size_t recordCount) override;

  /// Makes all changes since the last save durable, all of them or none; blocks stay open. Does
  /// nothing when there are none. Fails in a database that is open for reading only.
  void Save();

  /// Moves a reader to the newest save; false when it was there already. Blocks, views and cursors
  /// that were open are invalid afterwards; descriptors stay valid. Nothing changes when it fails.
  /// A writer is always at the newest.
  bool Refresh();

  /// The number of the save that is seen; grows with every save that changed something.
  std::uint64_t GetGeneration() const;

  /// Reads everything that was saved and compares it with its checksums. Damage is reported, not
  /// thrown.
  Report Verify(const Progress& progress = {});

  /// Copies what is intact in this database, as it was last saved, into a new one.
  Report Salvage(const std::wstring& target, const Progress& progress = {});
  /// The same for a database that may be too damaged to be opened. Of a block whose content is
  /// damaged in part, the records of all other chunks are copied; `problems` says what was lost.
  static Report Salvage(const std::wstring& name, const std::wstring& target,
                        const Progress& progress = {});

  /// Saves, drops strings and lists that no record refers to, and writes the content anew without
  /// gaps. Needs room for all of it until it is done; ended early or failed, it has saved, and
  /// perhaps dropped, but moved nothing. False when `progress` ended it. Nothing is dropped while
  /// there is a record cursor, of whatever block.
  bool Compact(const Progress& progress = {});

  /// Copies the newest save, with nothing that is unsaved, to a new database. The writer, here or
  /// elsewhere, may go on meanwhile. False, and nothing left behind, when `progress` ended it.
  bool Backup(const std::wstring& target, const Progress& progress = {});

  /// Whether a failure came from the system: no room, in use elsewhere, a device that fails. Others
  /// come from the caller's request or from damage.
  static bool IsSystemFailure(const FED_Exception& failure);

  /// Whether the system refused something, be it such a failure, or a path that is not there, is
  /// there already, or may not be touched. The message names the path.
  static bool IsRefusal(const FED_Exception& failure);

 protected:
  FED_DataBlock* MakeStoredBlock(const FED_DataDescriptor& primary) override;
  std::uint64_t GetClosings() const override;
  bool MayHoldUnregistered() const override { return false; }

 private:
  FED_DataBlock& Create(const FED_DataDescriptor& descriptor, int properties,
                        const std::string* format);

  void RequireOpen() const;

  qelta::FileSystem& m_Files;
  std::unique_ptr<qelta::FileSession> m_Session;
};
