#include "CatalogueWriter.h"

namespace qelta {
namespace {

void Put(SqliteStatement& statement, const ReadableValue& value) {
  if (const auto* const number = std::get_if<std::int64_t>(&value)) {
    statement.PutInteger(*number);
  } else if (const auto* const text = std::get_if<std::string>(&value)) {
    statement.PutText(*text);
  } else {
    statement.PutNull();
  }
}

void PutContent(SqliteStatement& statement, const BlockRow& row, std::uint64_t hash) {
  statement.PutText(row.format)
      .PutInteger(row.properties)
      .PutBits(row.records)
      .PutBits(row.span)
      .PutBits(row.handles)
      .PutBits(row.contentBytes)
      .PutBlob(row.chunks)
      .PutBits(hash);
}

}  // namespace

CatalogueWriter::CatalogueWriter(SqliteConnection& connection)
    : m_Connection(connection),
      m_LastBlock(connection, "SELECT max(id) FROM blocks"),
      m_InsertBlock(connection,
                    "INSERT OR IGNORE INTO blocks VALUES (?,?,?,?,?,?,?,?,?,?,"
                    "?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)"),
      m_FindBlock(connection, "SELECT id, hash FROM blocks WHERE key = ?"),
      m_UpdateBlock(connection,
                    "UPDATE blocks SET format = ?, properties = ?, records = ?, span = ?, "
                    "handles = ?, content_bytes = ?, chunks = ?, hash = ? WHERE id = ?"),
      m_DeleteBlock(connection, "DELETE FROM blocks WHERE id = ?"),
      m_InsertAlias(connection, "INSERT INTO aliases VALUES (?,?,?,?,?,?)"),
      m_FindIdMap(connection, "SELECT hash FROM id_maps WHERE type = ?"),
      m_WriteIdMap(connection, "INSERT OR REPLACE INTO id_maps VALUES (?,?,?,?,?,?)"),
      m_WriteMeta(connection, "INSERT OR REPLACE INTO meta VALUES (1,?,?,?,?,?,?,?,?,?,?,?,?)") {}

void CatalogueWriter::Begin(const CatalogueState& state) { Write(MetaRow{state, {}, {}, {}}); }

void CatalogueWriter::Commit(const CatalogueChanges& changes) {
  SqliteTransaction transaction(m_Connection, SqliteTransaction::Kind::WRITE);
  MetaRow meta = ReadMeta(m_Connection);
  meta.state = changes.state;
  if (changes.clears) Clear(meta);
  for (const std::string& key : changes.deleted) Delete(key, meta.blocks);
  m_NextBlock = 0;
  for (const BlockRow* const row : changes.written) Write(*row, meta.blocks);
  if (changes.replacesAliases) ReplaceAliases(changes.aliases, meta.aliases);
  for (const IdMapRow& row : changes.idMaps) Write(row, meta.idMaps);
  Write(meta);
  transaction.Commit();
}

void CatalogueWriter::Clear(MetaRow& meta) {
  m_Connection.Execute("DELETE FROM blocks; DELETE FROM aliases; DELETE FROM id_maps;");
  meta.blocks = meta.aliases = meta.idMaps = {};
}

void CatalogueWriter::Delete(const std::string& key, TableSum& sum) {
  m_FindBlock.Restart().PutBlob(key);
  if (!m_FindBlock.Step()) return;
  const std::int64_t id = m_FindBlock.GetInteger(0);
  sum.Remove(static_cast<std::uint64_t>(m_FindBlock.GetInteger(1)));
  m_FindBlock.Restart();
  m_DeleteBlock.Restart().PutInteger(id).Run();
}

void CatalogueWriter::Write(const BlockRow& row, TableSum& sum) {
  if (m_NextBlock == 0) {
    m_LastBlock.Restart().Step();
    m_NextBlock = m_LastBlock.GetInteger(0) + 1;
    m_LastBlock.Restart();
  }
  const std::uint64_t hash = m_Hasher.Hash(m_NextBlock, row);
  if (!Insert(m_NextBlock, row, hash)) return Replace(row, sum);
  sum.Add(hash);
  ++m_NextBlock;
}

// False when the key is there already.
bool CatalogueWriter::Insert(std::int64_t id, const BlockRow& row, std::uint64_t hash) {
  m_InsertBlock.Restart().PutInteger(id).PutBlob(row.key);
  PutContent(m_InsertBlock, row, hash);
  const auto readable = ReadableColumns(row);
  for (const ReadableValue& value : readable) Put(m_InsertBlock, value);
  m_InsertBlock.Run();
  return sqlite3_changes(m_Connection.GetHandle()) != 0;
}

void CatalogueWriter::Replace(const BlockRow& row, TableSum& sum) {
  m_FindBlock.Restart().PutBlob(row.key);
  if (!m_FindBlock.Step()) m_Connection.FailDamaged("the index of the table blocks is");
  const std::int64_t id = m_FindBlock.GetInteger(0);
  sum.Remove(static_cast<std::uint64_t>(m_FindBlock.GetInteger(1)));
  m_FindBlock.Restart();
  const std::uint64_t hash = m_Hasher.Hash(id, row);
  PutContent(m_UpdateBlock.Restart(), row, hash);
  m_UpdateBlock.PutInteger(id).Run();
  sum.Add(hash);
}

void CatalogueWriter::ReplaceAliases(const std::vector<AliasRow>& aliases, TableSum& sum) {
  m_Connection.Execute("DELETE FROM aliases");
  sum = {};
  for (const AliasRow& row : aliases) {
    const auto id = static_cast<std::int64_t>(sum.rows + 1);
    const std::uint64_t hash = m_Hasher.Hash(id, row);
    const auto readable = ReadableColumns(row);
    m_InsertAlias.Restart().PutInteger(id).PutBlob(row.alias).PutBlob(row.key).PutBits(hash);
    for (const ReadableValue& value : readable) Put(m_InsertAlias, value);
    m_InsertAlias.Run();
    sum.Add(hash);
  }
}

void CatalogueWriter::Write(const IdMapRow& row, TableSum& sum) {
  m_FindIdMap.Restart().PutInteger(row.type);
  if (m_FindIdMap.Step()) sum.Remove(static_cast<std::uint64_t>(m_FindIdMap.GetInteger(0)));
  m_FindIdMap.Restart();
  const std::uint64_t hash = m_Hasher.Hash(row.type, row);
  const auto readable = ReadableColumns(row);
  m_WriteIdMap.Restart().PutInteger(row.type).PutBits(row.entities).PutBits(row.bytes);
  m_WriteIdMap.PutBlob(row.chunks).PutBits(hash);
  for (const ReadableValue& value : readable) Put(m_WriteIdMap, value);
  m_WriteIdMap.Run();
  sum.Add(hash);
}

void CatalogueWriter::Write(const MetaRow& row) {
  const CatalogueState& state = row.state;
  const std::string uuid(state.uuid.begin(), state.uuid.end());
  m_WriteMeta.Restart().PutInteger(kFormatVersion).PutBlob(uuid).PutBits(state.generation);
  m_WriteMeta.PutText(state.payload).PutBits(state.payloadLength);
  for (const TableSum& sum : {row.blocks, row.aliases, row.idMaps}) {
    m_WriteMeta.PutBits(sum.rows).PutBits(sum.sum);
  }
  m_WriteMeta.PutBits(m_Hasher.Hash(row)).Run();
}

}  // namespace qelta
