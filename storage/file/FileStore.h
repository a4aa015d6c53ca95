#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Catalogue.h"
#include "ChunkCache.h"
#include "ContentTable.h"
#include "DatabaseLock.h"
#include "FED_DataDescriptor.h"
#include "FED_Database.h"
#include "FileSystem.h"
#include "HeldCommit.h"
#include "Payload.h"
#include "PayloadSpace.h"

namespace qelta {

class FileContent;

/// One open database directory: the content of all blocks, and the commits.
///
/// Shared by the database and its blocks. Works until Close, until a sync fails, and not in the
/// child of a fork; every operation fails then, saying why.
class FileStore {
 public:
  using ContentPointer = std::shared_ptr<FileContent>;

  /// Opens or makes the database in `directory`, a path in UTF-8.
  FileStore(FileSystem& files, std::string directory, FED_DatabaseDefs::AccessMode mode,
            std::uint64_t cacheSize);
  ~FileStore();
  FileStore(const FileStore&) = delete;
  FileStore& operator=(const FileStore&) = delete;

  FileSystem& GetFiles() { return m_Files; }
  const std::string& GetDirectory() const { return m_Directory; }
  const CatalogueState& GetState() const { return m_State; }
  bool IsWritable() const { return m_Mode != FED_DatabaseDefs::READ_ONLY; }

  /// Whether it may be used now, without a failure.
  bool IsUsable() const { return m_Problem == nullptr && !IsForked(); }
  /// In the child of a fork.
  bool IsForked() const { return m_ForkCount != FileSystem::GetForkCount(); }
  void RequireUsable() const {
    if (!IsUsable()) FailUnusable();
  }

  // What was stored when this was opened or refreshed last.

  using StoredBlock = std::pair<FED_DataDescriptor, ContentPointer>;
  /// In the order of first storing; the list is gone afterwards.
  std::vector<StoredBlock> TakeStored() { return std::move(m_Stored); }
  const std::vector<AliasRow>& GetAliases() const { return m_Aliases; }
  const std::vector<IdMapRow>& GetIdMaps() const { return m_IdMaps; }

  /// Whether a block has that name whose kind this program lacks or defines otherwise: such blocks
  /// are left alone.
  bool IsUnknownName(const std::string& key);

  // Blocks.

  /// Null when there is none.
  ContentPointer Find(const FED_DataDescriptor& descriptor) const;
  ContentPointer Find(const std::string& key) const;
  /// The block must not be there; fails under the name of one that is left alone.
  ContentPointer Add(const FED_DataDescriptor& descriptor, const std::string& format,
                     std::int32_t properties);
  void Delete(const FED_DataDescriptor& descriptor);

  // For contents.

  /// To be called before each; see ChunkCache.
  void BeginOperation() {
    RequireUsable();
    m_Cache.Step();
  }
  ChunkCache& GetCache() { return m_Cache; }
  Payload& GetPayload() { return *m_Payload; }
  Extent StoreExtent(const void* data, std::size_t size);
  void ReleaseExtent(const Extent& extent, std::uint64_t birth) noexcept;
  /// Takes note that the content is going to change; fails where nothing may.
  void NoteChange(FileContent& content);

  // Commits.

  struct Changes {
    bool replacesAliases = false;
    std::vector<AliasRow> aliases;
    std::vector<IdMapRow> idMaps;

    bool IsEmpty() const { return !replacesAliases && idMaps.empty(); }
  };

  bool HasChanges() const { return !m_Changed.empty() || !m_Deleted.empty() || m_Clears; }
  /// Blocks that are changed, new or deleted since the last commit.
  std::size_t CountChanged() const { return m_Changed.size() + m_Deleted.size(); }

  /// Makes the changes of the contents and `others` durable, all or none. When it fails they are
  /// here as before, for the next attempt; after a failed sync nothing works any more.
  void Commit(Changes others);

  // For maintenance; without changes that are not committed.

  std::vector<ContentPointer> ListContents() const;

  /// What the last commit says, read from the catalogue.
  CommitRows LoadRows();

  /// Makes the payload durable. When that fails nothing works any more.
  void Sync(Payload& payload);

  /// All content, written anew and durable in another payload file.
  struct Relocation {
    std::unique_ptr<Payload> payload;
    std::string name;
    std::uint64_t length = 0;
    CommitRows rows;                               // all of them, with their new chunks
    std::vector<std::vector<StoredChunk>> chunks;  // of each block
  };
  /// Commits that the content is there, goes on with it, and removes the former file unless a
  /// reader needs it, when the next opening for writing tries again. After a failure the former
  /// file is the one that counts; the new one must stay until that is certain, which is at the next
  /// opening.
  void Relocate(Relocation&& moved);

  /// The newest commit of the database that stands under the path now.
  CatalogueState ReadNewest();

  /// Grows with every block that is added or deleted.
  std::uint64_t GetBlockChanges() const { return m_BlockChanges; }
  /// Grows with every block object that may be about to be closed.
  std::uint64_t GetClosings() const { return m_Closings; }
  void CountClosing() { ++m_Closings; }
  /// The number goes on where that of a former store of the same database stands.
  void CountClosingsFrom(const FileStore& former) { m_Closings = former.m_Closings + 1; }

  /// Gives the locks and files up. What was not committed is lost. Never fails.
  void Close();

 private:
  static constexpr const char* kSyncFailed =
      "the system failed to sync its files, so nobody knows what is on the disk; check the device "
      "and open the database anew";

  void OpenForReading();
  void OpenForWriting();
  void OpenOrCreate();
  void MakeDirectory();
  void SyncParent(bool wasThere);
  void MoveAside(const std::string& reason);
  void CreateFiles();
  void StartEmpty();
  void Load(Catalogue& catalogue);
  void LoadBlock(BlockRow&& row);
  void OpenPayload(Catalogue& catalogue);
  void RemoveOldPayloads() noexcept;
  PayloadSpace& GetSpace();
  void Reclaim();
  CatalogueChanges CollectChanges(Changes& others);
  void CommitCatalogue(const CatalogueChanges& changes);
  void Relocated(Relocation& moved, const CatalogueState& state) noexcept;
  void VacuumCatalogue() noexcept;
  void Committed(const CatalogueState& state) noexcept;
  void ReleaseFiles() noexcept;
  std::string PathOf(const std::string& name) const { return m_Directory + "/" + name; }
  [[noreturn]] void FailUnusable() const;
  [[noreturn]] void FailDamaged(const char* what) const;

  FileSystem& m_Files;
  std::string m_Directory;
  FED_DatabaseDefs::AccessMode m_Mode;
  std::uint64_t m_ForkCount;
  const char* m_Problem = nullptr;  // why nothing works any more

  std::unique_ptr<DatabaseLock> m_Lock;
  std::unique_ptr<Catalogue> m_Catalogue;
  std::unique_ptr<Payload> m_Payload;
  std::unique_ptr<PayloadSpace> m_Space;
  ChunkCache m_Cache;

  CatalogueState m_State;
  std::uint64_t m_LastAttempt = 0;
  bool m_Clears = false;  // the first commit removes all that stood here
  std::vector<StoredBlock> m_Stored;
  std::vector<AliasRow> m_Aliases;
  std::vector<IdMapRow> m_IdMaps;
  std::vector<BlockRow> m_Unknown;
  std::unordered_set<std::string> m_UnknownNames;  // when they are asked for
  ContentTable m_Contents;
  std::vector<FileContent*> m_Changed;
  std::vector<BlockRow> m_Rows;  // of those, while a commit is made
  std::vector<std::string> m_Deleted;
  std::uint64_t m_BlockChanges = 0;
  std::uint64_t m_Closings = 1;  // at first all blocks are closed
};

}  // namespace qelta
