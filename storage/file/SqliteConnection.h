#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "SqliteFiles.h"

namespace qelta {

/// A file of SQLite that is open, and nothing of what it holds is trusted.
///
/// What SQLite refuses becomes a failure that names the file: Damage when the file does
/// not hold what it should, std::bad_alloc for want of memory. One thread at a time.
class SqliteConnection {
 public:
  enum class Mode {
    READ,
    IMMUTABLE,  ///< nobody can write: no locks are taken
    WRITE,
    CREATE  ///< for writing; the file is made when there is none
  };

  SqliteConnection(FileSystem& files, const std::string& path, Mode mode);
  /// All statements are gone by then.
  ~SqliteConnection();
  SqliteConnection(const SqliteConnection&) = delete;
  SqliteConnection& operator=(const SqliteConnection&) = delete;

  /// The path as a name to which SQLite gives no meaning of its own.
  static std::string PlainName(const std::string& path);

  const std::string& GetPath() const { return m_Path; }
  sqlite3* GetHandle() const { return m_Handle.get(); }
  bool HasSyncFailed() const { return m_Files.HasSyncFailed(); }

  /// Runs statements, and drops the rows that they give.
  void Execute(const char* sql);
  /// The one integer that a statement gives.
  std::int64_t GetInteger(const char* sql);
  /// The one text that a statement gives.
  std::string GetText(const char* sql);

  /// Waits for locks no longer than this.
  void SetPatience(int milliseconds) { sqlite3_busy_timeout(GetHandle(), milliseconds); }

  /// What an error code of SQLite means for the caller.
  [[noreturn]] void Fail(int code) const;
  [[noreturn]] void FailDamaged(const std::string& what) const;

 private:
  struct Closer {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
  };

  void Open(Mode mode);
  void Configure();

  SqliteFiles m_Files;
  std::string m_Path;
  std::unique_ptr<sqlite3, Closer> m_Handle;
};

/// A prepared statement of a connection, which outlives it.
class SqliteStatement {
 public:
  SqliteStatement(SqliteConnection& connection, std::string_view sql);

  /// Back to the first parameter and before the first row, which ends the reading. Parameters keep
  /// their values, so that each run gives all of them one.
  SqliteStatement& Restart();

  // Each gives the next parameter a value. Bytes must stay while rows are read.
  SqliteStatement& PutInteger(std::int64_t value);
  SqliteStatement& PutBits(std::uint64_t value) {
    return PutInteger(static_cast<std::int64_t>(value));
  }
  SqliteStatement& PutText(std::string_view text);
  SqliteStatement& PutBlob(std::string_view bytes);
  SqliteStatement& PutNull();

  /// To the next row; false behind the last one.
  bool Step();
  /// Does all of it.
  void Run();

  // Columns of the row, counted from 0. Those that give a bool say false when it has another type.
  std::int64_t GetInteger(int column) const { return sqlite3_column_int64(m_Handle.get(), column); }
  bool IsNull(int column) const { return Is(column, SQLITE_NULL); }
  bool Read(int column, std::int64_t& value) const;
  bool Read(int column, std::int32_t& value) const;
  bool Read(int column, std::uint64_t& bits) const;
  bool ReadText(int column, std::string& text) const;
  bool ReadBlob(int column, std::string& bytes) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
  };

  bool Is(int column, int type) const {
    return sqlite3_column_type(m_Handle.get(), column) == type;
  }
  void ReadBytes(int column, std::string& bytes) const;
  void Check(int code) const {
    if (code != SQLITE_OK) m_Connection.Fail(code);
  }

  SqliteConnection& m_Connection;
  std::unique_ptr<sqlite3_stmt, Finalizer> m_Handle;
  int m_Parameter = 0;
};

/// Taken back by the destructor unless it was committed.
class SqliteTransaction {
 public:
  enum class Kind { READ, WRITE };

  SqliteTransaction(SqliteConnection& connection, Kind kind);
  ~SqliteTransaction();
  SqliteTransaction(const SqliteTransaction&) = delete;
  SqliteTransaction& operator=(const SqliteTransaction&) = delete;

  void Commit();

 private:
  void RollBack() noexcept;

  SqliteConnection& m_Connection;
};

}  // namespace qelta
