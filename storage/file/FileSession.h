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

  /// Goes on with a store that was opened later; all blocks must be closed.
  void MoveTo(std::shared_ptr<FileStore> store, FED_DataBlockSet& blocks, FED_IdMapsPool& pool);

 private:
  std::shared_ptr<FileStore> m_Store;
  StoredNames m_Names;
  IdMapStore m_IdMaps;
};

}  // namespace qelta
