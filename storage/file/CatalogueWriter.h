#pragma once

#include "CatalogueRows.h"

namespace qelta {

/// Changes a catalogue, one transaction at a time. Its statements stay prepared.
class CatalogueWriter {
 public:
  /// The connection outlives the writer.
  explicit CatalogueWriter(SqliteConnection& connection);

  /// Writes the first meta row; the caller's transaction.
  void Begin(const CatalogueState& state);
  /// One transaction. After a failure the state before it holds.
  void Commit(const CatalogueChanges& changes);

 private:
  void Clear(MetaRow& meta);
  void Delete(const std::string& key, TableSum& sum);
  void Write(const BlockRow& row, TableSum& sum);
  bool Insert(std::int64_t id, const BlockRow& row, std::uint64_t hash);
  void Replace(const BlockRow& row, TableSum& sum);
  void ReplaceAliases(const std::vector<AliasRow>& aliases, TableSum& sum);
  void Write(const IdMapRow& row, TableSum& sum);
  void Write(const MetaRow& row);

  SqliteConnection& m_Connection;
  RowHasher m_Hasher;
  std::int64_t m_NextBlock = 0;
  SqliteStatement m_LastBlock;
  SqliteStatement m_InsertBlock;
  SqliteStatement m_FindBlock;
  SqliteStatement m_UpdateBlock;
  SqliteStatement m_DeleteBlock;
  SqliteStatement m_InsertAlias;
  SqliteStatement m_FindIdMap;
  SqliteStatement m_WriteIdMap;
  SqliteStatement m_WriteMeta;
};

}  // namespace qelta
