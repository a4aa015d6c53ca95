#include "SqliteConnection.h"

#include <new>

#include "Damage.h"
#include "IoFailure.h"

namespace qelta {
namespace {

constexpr char kLocation[] = "|%P|QeltaFileStorage|SqliteConnection";
constexpr int kPatience = 10000;

std::string ImmutableUri(const std::string& path) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string uri = "file:";
  // Two slashes would begin the name of a host.
  if (path.compare(0, 2, "//") == 0) uri += "//";
  for (const char c : path) {
    if (c != '%' && c != '?' && c != '#') {
      uri += c;
      continue;
    }
    const auto code = static_cast<unsigned char>(c);
    uri += {'%', kDigits[code >> 4], kDigits[code & 15]};
  }
  return uri + "?immutable=1";
}

int FlagsOf(SqliteConnection::Mode mode) {
  switch (mode) {
    case SqliteConnection::Mode::READ:
      return SQLITE_OPEN_READONLY;
    case SqliteConnection::Mode::IMMUTABLE:
      return SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
    case SqliteConnection::Mode::WRITE:
      return SQLITE_OPEN_READWRITE;
    case SqliteConnection::Mode::CREATE:
      break;
  }
  return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
}

bool IsDamage(int code) {
  switch (code & 0xff) {
    case SQLITE_ERROR:  // tables or columns are missing: no statement here is wrong by itself
    case SQLITE_INTERNAL:
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
    case SQLITE_SCHEMA:
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
    case SQLITE_TOOBIG:
      return true;
    default:
      return code == SQLITE_IOERR_SHORT_READ;
  }
}

bool IsLeftBehind(int code) {
  return code == SQLITE_READONLY_ROLLBACK || code == SQLITE_READONLY_RECOVERY ||
         code == SQLITE_READONLY_CANTINIT;
}

}  // namespace

SqliteConnection::SqliteConnection(FileSystem& files, const std::string& path, Mode mode)
    : m_Files(files), m_Path(path) {
  Open(mode);
  Configure();
}

std::string SqliteConnection::PlainName(const std::string& path) {
  const bool isSpecial = path.empty() || path[0] == ':' || path.compare(0, 5, "file:") == 0;
  return isSpecial ? "./" + path : path;
}

SqliteConnection::~SqliteConnection() {
  // What could not be synced is left as it is, for the next one that opens the file.
  if (HasSyncFailed()) {
    sqlite3_db_config(GetHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  }
}

void SqliteConnection::Open(Mode mode) {
  const std::string name = mode == Mode::IMMUTABLE ? ImmutableUri(m_Path) : PlainName(m_Path);
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &handle, FlagsOf(mode) | SQLITE_OPEN_NOMUTEX,
                                   m_Files.GetName());
  m_Handle.reset(handle);
  if (handle == nullptr) throw std::bad_alloc();
  sqlite3_extended_result_codes(handle, 1);
  if (code != SQLITE_OK) Fail(code);
}

void SqliteConnection::Configure() {
  SetPatience(kPatience);
  sqlite3_db_config(GetHandle(), SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
  sqlite3_db_config(GetHandle(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(GetHandle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(GetHandle(), SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  Execute("PRAGMA cell_size_check=ON; PRAGMA mmap_size=0; PRAGMA temp_store=MEMORY;");
}

void SqliteConnection::Execute(const char* sql) {
  m_Files.ForgetLastFailure();
  const int code = sqlite3_exec(GetHandle(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Fail(code);
}

std::int64_t SqliteConnection::GetInteger(const char* sql) {
  SqliteStatement statement(*this, sql);
  if (!statement.Step()) FailDamaged("it does not answer");
  return statement.GetInteger(0);
}

std::string SqliteConnection::GetText(const char* sql) {
  SqliteStatement statement(*this, sql);
  std::string text;
  if (!statement.Step() || !statement.ReadText(0, text)) FailDamaged("it does not answer");
  return text;
}

void SqliteConnection::Fail(int code) const {
  if ((code & 0xff) == SQLITE_NOMEM || code == SQLITE_IOERR_NOMEM) throw std::bad_alloc();
  const std::string reason = sqlite3_errmsg(GetHandle());
  if (IsDamage(code)) FailDamaged(reason);
  if (IsLeftBehind(code)) {
    FED_Failure::Throw("220200000011", kLocation,
                       "A writer of the catalogue '%s' was cut off, and what it left behind cannot "
                       "be cleared by a reader (%s). Open the database once for writing.",
                       m_Path.c_str(), reason.c_str());
  }
  if ((code & 0xff) == SQLITE_BUSY || (code & 0xff) == SQLITE_LOCKED) {
    throw IoFailure(IoProblem::LOCKED, "220200000012",
                    "The catalogue '" + m_Path + "' stayed locked (" + reason +
                        "). Try again when no other program has it open.");
  }
  const std::string& system = m_Files.GetLastFailure();
  throw IoFailure(
      IoProblem::OTHER, "220200000013",
      "The catalogue '" + m_Path + "' cannot be used: " + reason + ". " +
          (system.empty() ? "Look at the place where it lies: free space, rights, device."
                          : system));
}

void SqliteConnection::FailDamaged(const std::string& what) const {
  throw Damage("220200000010",
               "The catalogue '" + m_Path + "' is damaged: " + what +
                   ". Verify lists what is damaged, Salvage copies what is intact.",
               kLocation);
}

SqliteStatement::SqliteStatement(SqliteConnection& connection, std::string_view sql)
    : m_Connection(connection) {
  sqlite3_stmt* handle = nullptr;
  Check(sqlite3_prepare_v3(connection.GetHandle(), sql.data(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &handle, nullptr));
  m_Handle.reset(handle);
}

SqliteStatement& SqliteStatement::Restart() {
  sqlite3_reset(m_Handle.get());  // repeats how the last run ended, which is known
  m_Parameter = 0;
  return *this;
}

SqliteStatement& SqliteStatement::PutInteger(std::int64_t value) {
  Check(sqlite3_bind_int64(m_Handle.get(), ++m_Parameter, value));
  return *this;
}

SqliteStatement& SqliteStatement::PutText(std::string_view text) {
  Check(sqlite3_bind_text64(m_Handle.get(), ++m_Parameter, text.data(), text.size(), SQLITE_STATIC,
                            SQLITE_UTF8));
  return *this;
}

SqliteStatement& SqliteStatement::PutBlob(std::string_view bytes) {
  Check(sqlite3_bind_blob64(m_Handle.get(), ++m_Parameter, bytes.data(), bytes.size(),
                            SQLITE_STATIC));
  return *this;
}

SqliteStatement& SqliteStatement::PutNull() {
  Check(sqlite3_bind_null(m_Handle.get(), ++m_Parameter));
  return *this;
}

bool SqliteStatement::Step() {
  const int code = sqlite3_step(m_Handle.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) m_Connection.Fail(code);
  return code == SQLITE_ROW;
}

void SqliteStatement::Run() {
  while (Step()) {
  }
}

bool SqliteStatement::Read(int column, std::int64_t& value) const {
  if (!Is(column, SQLITE_INTEGER)) return false;
  value = GetInteger(column);
  return true;
}

bool SqliteStatement::Read(int column, std::int32_t& value) const {
  std::int64_t wide = 0;
  if (!Read(column, wide)) return false;
  value = static_cast<std::int32_t>(wide);
  return value == wide;
}

bool SqliteStatement::Read(int column, std::uint64_t& bits) const {
  std::int64_t value = 0;
  if (!Read(column, value)) return false;
  bits = static_cast<std::uint64_t>(value);
  return true;
}

bool SqliteStatement::ReadText(int column, std::string& text) const {
  if (!Is(column, SQLITE_TEXT)) return false;
  ReadBytes(column, text);
  return true;
}

bool SqliteStatement::ReadBlob(int column, std::string& bytes) const {
  if (!Is(column, SQLITE_BLOB)) return false;
  ReadBytes(column, bytes);
  return true;
}

void SqliteStatement::ReadBytes(int column, std::string& bytes) const {
  // In this order: asking for the size may move a text whose encoding is not what it should be.
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_Handle.get(), column));
  const void* const data = sqlite3_column_blob(m_Handle.get(), column);
  if (data == nullptr && size > 0) throw std::bad_alloc();
  bytes.assign(static_cast<const char*>(data), data == nullptr ? 0 : size);
}

SqliteTransaction::SqliteTransaction(SqliteConnection& connection, Kind kind)
    : m_Connection(connection) {
  RollBack();  // of the one before, for which there was no memory
  try {
    connection.Execute(kind == Kind::READ ? "BEGIN" : "BEGIN IMMEDIATE");
  } catch (...) {
    RollBack();  // it may have begun all the same
    throw;
  }
}

SqliteTransaction::~SqliteTransaction() { RollBack(); }

void SqliteTransaction::RollBack() noexcept {
  sqlite3* const handle = m_Connection.GetHandle();
  // For want of memory in the statement before, SQLite may refuse once.
  for (int i = 0; i < 2 && sqlite3_get_autocommit(handle) == 0; ++i) {
    sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
  }
}

void SqliteTransaction::Commit() { m_Connection.Execute("COMMIT"); }

}  // namespace qelta
