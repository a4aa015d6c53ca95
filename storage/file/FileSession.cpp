#include "FileSession.h"

#include <utility>

namespace qelta {

FileSession::FileSession(std::shared_ptr<FileStore> store, FED_DataBlockSet& blocks,
                         FED_IdMapsPool& pool)
    : m_Store(std::move(store)) {
  m_IdMaps.Load(*m_Store, pool);
  m_Names.Load(*m_Store, blocks);
}

FileSession::~FileSession() { m_Store->Close(); }

bool FileSession::HasChanges(const FED_DataBlockSet& blocks, const FED_IdMapsPool& pool) {
  if (!m_Store->IsWritable() || m_Store->IsForked()) return false;
  std::vector<AliasRow> aliases;
  return m_Store->HasChanges() || m_Names.Collect(*m_Store, blocks, aliases) ||
         m_IdMaps.HaveChanged(pool);
}

void FileSession::Save(const FED_DataBlockSet& blocks, const FED_IdMapsPool& pool) {
  m_Store->RequireUsable();
  FileStore::Changes changes;
  changes.replacesAliases = m_Names.Collect(*m_Store, blocks, changes.aliases);
  changes.idMaps = m_IdMaps.Collect(*m_Store, pool);
  m_Store->Commit(std::move(changes));
  m_Names.Committed(blocks, *m_Store);
  m_IdMaps.Committed(*m_Store);
}

void FileSession::MoveTo(std::shared_ptr<FileStore> store, FED_DataBlockSet& blocks,
                         FED_IdMapsPool& pool) {
  StoredNames names;
  IdMapStore maps;
  maps.Replace(*store, m_IdMaps, pool);
  names.Replace(*store, m_Names, blocks);
  store->CountClosingsFrom(*m_Store);
  m_Store->Close();
  m_Store = std::move(store);
  m_Names = std::move(names);
  m_IdMaps = std::move(maps);
}

}  // namespace qelta
