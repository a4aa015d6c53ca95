#include "SqliteTable.h"

#include <sqlite3.h>

#include <cstring>
#include <stdexcept>

namespace qelta::bench {
namespace {

class SqliteTable : public BlockStore {
 public:
  SqliteTable(const std::filesystem::path& path, Mode mode) {
    Require(sqlite3_open(path.c_str(), &m_Connection));
    Execute(
        "PRAGMA page_size = 65536; PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
        "PRAGMA cache_size = -262144; PRAGMA mmap_size = 4294967296;");
    if (mode == Mode::Create) {
      Execute("CREATE TABLE block(id INTEGER PRIMARY KEY, content BLOB NOT NULL)");
    }
    if (mode != Mode::Read) Execute("BEGIN");
    Prepare("INSERT INTO block VALUES (?1, ?2)", m_Insert);
    Prepare("UPDATE block SET content = ?2 WHERE id = ?1", m_Update);
    Prepare("SELECT content FROM block WHERE id = ?1", m_Select);
  }
  ~SqliteTable() override {
    for (sqlite3_stmt* const statement : {m_Insert, m_Update, m_Select}) {
      sqlite3_finalize(statement);
    }
    sqlite3_close(m_Connection);
  }

  void Add(const BlockKey& key, const void* bytes, std::size_t size) override {
    Put(m_Insert, key.Packed(), bytes, size);
  }
  void Replace(const BlockKey& key, const void* bytes, std::size_t size) override {
    Put(m_Update, key.Packed(), bytes, size);
  }
  void Commit() override { Execute("COMMIT; BEGIN"); }

  std::uint64_t List() override {
    sqlite3_stmt* all = nullptr;
    Prepare("SELECT id FROM block", all);
    std::uint64_t sum = 0;
    while (sqlite3_step(all) == SQLITE_ROW) {
      sum += static_cast<std::uint64_t>(sqlite3_column_int64(all, 0)) >> 32;
    }
    sqlite3_finalize(all);
    return sum;
  }
  void Read(const BlockKey& key, void* bytes, std::size_t size) override {
    sqlite3_bind_int64(m_Select, 1, static_cast<sqlite3_int64>(key.Packed()));
    if (sqlite3_step(m_Select) == SQLITE_ROW) {
      std::memcpy(bytes, sqlite3_column_blob(m_Select, 0), size);
    }
    Require(sqlite3_reset(m_Select));
  }

 private:
  void Require(int result) const {
    if (result != SQLITE_OK) {
      throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(m_Connection));
    }
  }
  void Execute(const char* text) const {
    Require(sqlite3_exec(m_Connection, text, nullptr, nullptr, nullptr));
  }
  void Prepare(const char* text, sqlite3_stmt*& statement) const {
    Require(sqlite3_prepare_v2(m_Connection, text, -1, &statement, nullptr));
  }
  void Put(sqlite3_stmt* statement, std::uint64_t id, const void* bytes, std::size_t size) const {
    sqlite3_bind_int64(statement, 1, static_cast<sqlite3_int64>(id));
    sqlite3_bind_blob64(statement, 2, bytes, size, SQLITE_STATIC);
    sqlite3_step(statement);
    Require(sqlite3_reset(statement));
  }

  sqlite3* m_Connection = nullptr;
  sqlite3_stmt* m_Insert = nullptr;
  sqlite3_stmt* m_Update = nullptr;
  sqlite3_stmt* m_Select = nullptr;
};

}  // namespace

std::unique_ptr<BlockStore> OpenSqliteTable(const std::filesystem::path& path,
                                            BlockStore::Mode mode) {
  return std::make_unique<SqliteTable>(path, mode);
}

}  // namespace qelta::bench
