#include "CatalogueSchema.h"

#include "CatalogueRows.h"
#include "Damage.h"

namespace qelta {
namespace {

constexpr char kLocation[] = "|%P|QeltaFileStorage|CatalogueSchema";
constexpr std::int64_t kApplicationId = 0x51656C74;  // "Qelt"

constexpr char kTables[] = R"(
CREATE TABLE meta (
  id INTEGER PRIMARY KEY,
  format INTEGER NOT NULL,
  uuid BLOB NOT NULL,
  generation INTEGER NOT NULL,
  payload TEXT NOT NULL,
  payload_length INTEGER NOT NULL,
  blocks INTEGER NOT NULL,
  blocks_sum INTEGER NOT NULL,
  aliases INTEGER NOT NULL,
  aliases_sum INTEGER NOT NULL,
  id_maps INTEGER NOT NULL,
  id_maps_sum INTEGER NOT NULL,
  hash INTEGER NOT NULL
);
CREATE TABLE blocks (
  id INTEGER PRIMARY KEY,
  key BLOB NOT NULL UNIQUE,
  format TEXT NOT NULL,
  properties INTEGER NOT NULL,
  records INTEGER NOT NULL,
  span INTEGER NOT NULL,
  handles INTEGER NOT NULL,
  content_bytes INTEGER NOT NULL,
  chunks BLOB NOT NULL,
  hash INTEGER NOT NULL,
  iteration INTEGER,
  onf INTEGER,
  state INTEGER,
  loadcase INTEGER,
  substep INTEGER,
  analysis INTEGER,
  increment INTEGER,
  objective_id TEXT,
  label TEXT,
  layer INTEGER,
  microphone INTEGER,
  id_type INTEGER,
  direction INTEGER,
  sub_level INTEGER,
  kind TEXT
);
CREATE TABLE aliases (
  id INTEGER PRIMARY KEY,
  alias BLOB NOT NULL UNIQUE,
  key BLOB NOT NULL,
  hash INTEGER NOT NULL,
  alias_text TEXT,
  key_text TEXT
);
CREATE TABLE id_maps (
  type INTEGER PRIMARY KEY,
  entities INTEGER NOT NULL,
  bytes INTEGER NOT NULL,
  chunks BLOB NOT NULL,
  hash INTEGER NOT NULL,
  name TEXT
);
)";

void SetPragma(SqliteConnection& connection, const char* name, std::int64_t value) {
  connection.Execute(("PRAGMA " + std::string(name) + "=" + std::to_string(value)).c_str());
}

}  // namespace

std::int64_t CountTables(SqliteConnection& connection) {
  return connection.GetInteger("SELECT count(*) FROM sqlite_master");
}

void CreateTables(SqliteConnection& connection) {
  SetPragma(connection, "application_id", kApplicationId);
  SetPragma(connection, "user_version", kFormatVersion);
  connection.Execute(kTables);
}

void CheckFormat(SqliteConnection& connection) {
  std::int64_t id = 0;
  try {
    id = connection.GetInteger("PRAGMA application_id");
  } catch (const Damage&) {
    throw Damage("220200000020",
                 "'" + connection.GetPath() +
                     "' is no catalogue of a database, or its beginning is damaged. Give the name "
                     "of a database, or restore it from a backup.",
                 kLocation);
  }
  if (id != kApplicationId) {
    FED_Failure::Throw("220200000021", kLocation,
                       "'%s' is a file of SQLite, but no catalogue of a database. Give the name of "
                       "a database.",
                       connection.GetPath().c_str());
  }
  const std::int64_t version = connection.GetInteger("PRAGMA user_version");
  if (version > kFormatVersion) {
    FED_Failure::Throw("220200000022", kLocation,
                       "The catalogue '%s' has format %d, this program knows formats up to %d: it "
                       "was written by a newer version. Update this program.",
                       connection.GetPath().c_str(), static_cast<int>(version), kFormatVersion);
  }
  if (version < 1) connection.FailDamaged("it has the format " + std::to_string(version));
}

void PrepareForWriting(SqliteConnection& connection, bool usesWal) {
  const std::string wanted = usesWal ? "wal" : "truncate";
  const std::string mode = connection.GetText(("PRAGMA journal_mode=" + wanted).c_str());
  if (mode != wanted) {
    FED_Failure::Throw("220200000023", kLocation,
                       "The catalogue '%s' stays in the journal mode '%s' where '%s' is needed. "
                       "Close the database in all other programs.",
                       connection.GetPath().c_str(), mode.c_str(), wanted.c_str());
  }
  // A transaction with 100 000 blocks fits in.
  connection.Execute("PRAGMA synchronous=FULL; PRAGMA cache_size=-65536;");
}

}  // namespace qelta
