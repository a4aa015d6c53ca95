#pragma once

#include "CatalogueRows.h"

namespace qelta {

/// Reads a catalogue; each operation is one transaction. See Catalogue.
class CatalogueReader {
 public:
  /// The connection outlives the reader.
  explicit CatalogueReader(SqliteConnection& connection) : m_Connection(connection) {}

  void Load(const Catalogue::Visitor& visitor);
  void LoadIntact(const Catalogue::Visitor& visitor, const DamageHandler& damage);
  void VerifyColumns(const DamageHandler& damage);

 private:
  template <class Row>
  void LoadTable(const TableSum& expected, const std::function<void(Row&&)>& visit);

  bool LoadIntactMeta(MetaRow& meta, const DamageHandler& damage);
  template <class Row>
  TableSum LoadIntactTable(const std::function<void(Row&&)>& visit, const DamageHandler& damage);
  template <class Row, class Use>
  bool Walk(const char* order, const DamageHandler& damage, Use use);

  template <class Row>
  void VerifyTable(const DamageHandler& damage);
  void VerifyIndexes(const DamageHandler& damage);

  SqliteConnection& m_Connection;
  RowHasher m_Hasher;
};

}  // namespace qelta
