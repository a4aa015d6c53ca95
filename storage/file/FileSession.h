#pragma once

#include <memory>

#include "FED_DataBlockSet.h"
#include "FED_IdMapsPool.h"
#include "FileStore.h"
#include "IdMapStore.h"
#include "StoredNames.h"

namespace qelta {

/// What a database has while it is open: the store, and what brings aliases and id maps into its
/// commits.
class FileSession {
 public:
  /// Fills the block set, which must be empty, and the id maps.
  FileSession(std::shared_ptr<FileStore> store, FED_DataBlockSet& blocks, FED_IdMapsPool& pool);
  ~FileSession();

  FileStore& GetStore() { return *m_Store; }
  IdMapStore& GetIdMaps() { return m_IdMaps; }
  const std::shared_ptr<FileStore>& GetPointer() const { return m_Store; }

  bool HasChanges(const FED_DataBlockSet& blocks, const FED_IdMapsPool& pool);
  void Save(const FED_DataBlockSet& blocks, const FED_IdMapsPool& pool);

  /// What is known of a store that was opened later.
  struct Successor {
    std::shared_ptr<FileStore> store;
    StoredNames names;
    IdMapStore maps;
  };
  /// Does all that can fail about going on with that store; nothing has changed when it does. The
  /// descriptors of both stores are registered then, but no block of the new one can be opened.
  Successor Prepare(std::shared_ptr<FileStore> store, FED_DataBlockSet& blocks) const;
  /// Goes on with it, which was the last thing prepared; all blocks must be closed. Never fails.
  void MoveTo(Successor&& next, FED_DataBlockSet& blocks, FED_IdMapsPool& pool);

 private:
  std::shared_ptr<FileStore> m_Store;
  StoredNames m_Names;
  IdMapStore m_IdMaps;
};

}  // namespace qelta
