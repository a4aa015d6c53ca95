#include "CatalogueReader.h"

#include <limits>
#include <utility>

#include "Damage.h"

namespace qelta {
namespace {

constexpr std::int64_t kBeforeAll = std::numeric_limits<std::int64_t>::min();
constexpr char kAscending[] = " ORDER BY 1";
constexpr char kDescending[] = " ORDER BY 1 DESC";

std::string TitleOf(const BlockRow& row) { return "block " + DescribeKey(row.key); }
std::string TitleOf(const AliasRow& row) { return "name " + DescribeKey(row.alias); }
std::string TitleOf(const IdMapRow& row) { return "id map " + std::to_string(row.type); }

const char* TableOf(const BlockRow&) { return "blocks"; }
const char* TableOf(const AliasRow&) { return "aliases"; }
const char* TableOf(const IdMapRow&) { return "id_maps"; }

// The first column that is there for people only.
int FirstReadable(const BlockRow&) { return 10; }
int FirstReadable(const AliasRow&) { return 4; }
int FirstReadable(const IdMapRow&) { return 5; }

template <class Row>
std::string Statement(const Row& row, const char* order) {
  return SelectOf(row) + std::string(order);
}

std::string BadRow(const char* table, std::int64_t id) {
  return "row " + std::to_string(id) + " of the table " + table;
}

std::string BadSum(const char* table, const TableSum& expected, const TableSum& found) {
  return "of " + std::to_string(expected.rows) + " rows of the table " + table + ", " +
         std::to_string(found.rows) + " are found, and they are not all as they were written";
}

template <class Row>
void Hand(const std::function<void(Row&&)>& visit, Row& row) {
  if (visit) visit(std::move(row));
}

bool Holds(const SqliteStatement& statement, int column, const ReadableValue& expected) {
  if (const auto* const number = std::get_if<std::int64_t>(&expected)) {
    std::int64_t found = 0;
    return statement.Read(column, found) && found == *number;
  }
  if (const auto* const text = std::get_if<std::string>(&expected)) {
    std::string found;
    return statement.ReadText(column, found) && found == *text;
  }
  return statement.IsNull(column);
}

}  // namespace

void CatalogueReader::Load(const Catalogue::Visitor& visitor) {
  const SqliteTransaction transaction(m_Connection, SqliteTransaction::Kind::READ);
  const MetaRow meta = ReadMeta(m_Connection);
  if (visitor.state) visitor.state(meta.state);
  LoadTable(meta.blocks, visitor.block);
  LoadTable(meta.aliases, visitor.alias);
  LoadTable(meta.idMaps, visitor.idMap);
}

template <class Row>
void CatalogueReader::LoadTable(const TableSum& expected, const std::function<void(Row&&)>& visit) {
  const Row none{};
  SqliteStatement rows(m_Connection, Statement(none, kAscending));
  TableSum found;
  std::int64_t last = kBeforeAll;
  std::uint64_t hash = 0;
  while (rows.Step()) {
    Row row;
    const std::int64_t id = rows.GetInteger(0);
    if (id <= last || !ReadRow(rows, m_Hasher, row, hash)) {
      m_Connection.FailDamaged(BadRow(TableOf(none), id));
    }
    last = id;
    found.Add(hash);
    Hand(visit, row);
  }
  if (found != expected) m_Connection.FailDamaged(BadSum(TableOf(none), expected, found));
}

void CatalogueReader::LoadIntact(const Catalogue::Visitor& visitor, const DamageHandler& damage) {
  const SqliteTransaction transaction(m_Connection, SqliteTransaction::Kind::READ);
  MetaRow meta;
  const bool knowsSums = LoadIntactMeta(meta, damage);
  if (visitor.state) visitor.state(meta.state);
  const auto check = [&](const char* table, const TableSum& expected, const TableSum& found) {
    if (knowsSums && found != expected) damage(BadSum(table, expected, found));
  };
  check("blocks", meta.blocks, LoadIntactTable(visitor.block, damage));
  check("aliases", meta.aliases, LoadIntactTable(visitor.alias, damage));
  check("id_maps", meta.idMaps, LoadIntactTable(visitor.idMap, damage));
}

// True when the row is as it was written; else it holds what can be read.
bool CatalogueReader::LoadIntactMeta(MetaRow& meta, const DamageHandler& damage) {
  try {
    SqliteStatement statement(m_Connection, SelectOf(meta));
    if (statement.Step() && ReadRow(statement, m_Hasher, meta)) return true;
    damage("the row of the table meta is damaged or absent");
  } catch (const Damage& failure) {
    damage(failure.GetMessageText());
  }
  return false;
}

template <class Row>
TableSum CatalogueReader::LoadIntactTable(const std::function<void(Row&&)>& visit,
                                          const DamageHandler& damage) {
  TableSum found;
  std::int64_t last = kBeforeAll;
  const bool isWhole =
      Walk<Row>(kAscending, damage, [&](std::int64_t id, Row&& row, std::uint64_t hash) {
        if (id <= last) return true;
        last = id;
        found.Add(hash);
        Hand(visit, row);
        return true;
      });
  if (isWhole) return found;
  std::vector<Row> tail;
  std::int64_t first = std::numeric_limits<std::int64_t>::max();
  Walk<Row>(kDescending, damage, [&](std::int64_t id, Row&& row, std::uint64_t hash) {
    if (id <= last) return false;
    if (id >= first) return true;
    first = id;
    found.Add(hash);
    tail.push_back(std::move(row));
    return true;
  });
  for (auto row = tail.rbegin(); row != tail.rend(); ++row) Hand(visit, *row);
  return found;
}

// Calls use(id, row, hash) for intact rows while it says true. False when the table broke off.
template <class Row, class Use>
bool CatalogueReader::Walk(const char* order, const DamageHandler& damage, Use use) {
  const Row none{};
  try {
    SqliteStatement rows(m_Connection, Statement(none, order));
    while (rows.Step()) {
      Row row;
      std::uint64_t hash = 0;
      const std::int64_t id = rows.GetInteger(0);
      if (!ReadRow(rows, m_Hasher, row, hash) || !IsEncoded(row)) {
        damage(BadRow(TableOf(none), id) + " is damaged");
      } else if (!use(id, std::move(row), hash)) {
        break;
      }
    }
    return true;
  } catch (const Damage& failure) {
    damage(std::string("the table ") + TableOf(none) + ": " + failure.GetMessageText());
    return false;
  }
}

void CatalogueReader::VerifyColumns(const DamageHandler& damage) {
  const SqliteTransaction transaction(m_Connection, SqliteTransaction::Kind::READ);
  VerifyTable<BlockRow>(damage);
  VerifyTable<AliasRow>(damage);
  VerifyTable<IdMapRow>(damage);
  VerifyIndexes(damage);
}

template <class Row>
void CatalogueReader::VerifyTable(const DamageHandler& damage) {
  const Row none{};
  try {
    SqliteStatement rows(m_Connection, Statement(none, kAscending));
    while (rows.Step()) {
      Row row;
      std::uint64_t hash = 0;
      if (!ReadRow(rows, m_Hasher, row, hash)) continue;  // Load speaks of it
      int column = FirstReadable(none);
      bool fits = true;
      for (const ReadableValue& value : ReadableColumns(row)) fits &= Holds(rows, column++, value);
      if (!fits) damage(TitleOf(row) + ": the columns for queries do not fit its key");
    }
  } catch (const Damage& failure) {
    damage(std::string("the table ") + TableOf(none) + ": " + failure.GetMessageText());
  }
}

void CatalogueReader::VerifyIndexes(const DamageHandler& damage) {
  try {
    SqliteStatement rows(m_Connection, "PRAGMA integrity_check");
    std::string text;
    while (rows.Step()) {
      if (rows.ReadText(0, text) && text != "ok") damage("the catalogue: " + text);
    }
  } catch (const Damage& failure) {
    damage(failure.GetMessageText());
  }
}

}  // namespace qelta
