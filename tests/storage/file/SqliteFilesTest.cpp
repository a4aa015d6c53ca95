#include "SqliteFiles.h"

#include <gtest/gtest.h>

#include "CrashLog.h"
#include "FaultyFiles.h"
#include "TemporaryDirectory.h"

namespace qelta::test {
namespace {

/// The last text that the statements give, or "error" and SQLite's code.
std::string Execute(const SqliteFiles& files, const std::string& path, const std::string& sql) {
  constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI;
  sqlite3* database = nullptr;
  std::string text;
  const auto keep = [](void* out, int, char** values, char**) {
    *static_cast<std::string*>(out) = values[0] == nullptr ? "" : values[0];
    return 0;
  };
  int result = sqlite3_open_v2(path.c_str(), &database, kFlags, files.GetName());
  if (result == SQLITE_OK) result = sqlite3_exec(database, sql.c_str(), keep, &text, nullptr);
  sqlite3_close(database);
  return result == SQLITE_OK ? text : "error " + std::to_string(result);
}

constexpr const char* kModes[] = {"wal", "truncate"};

std::string Prepare(const std::string& mode) {
  return "PRAGMA journal_mode=" + mode + "; PRAGMA synchronous=FULL; PRAGMA cache_size=5;";
}

/// A transaction that replaces some twenty pages; the cache is smaller.
std::string Fill(int generation) {
  return "BEGIN; DELETE FROM t; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
         "WHERE i < 40) INSERT INTO t SELECT " +
         std::to_string(generation) + ", randomblob(2000) FROM n; COMMIT;";
}

void MakeDatabase(const std::string& path) {
  SqliteFiles files(SystemFiles());
  Execute(files, path, "PRAGMA synchronous=OFF; CREATE TABLE t(g, content);" + Fill(1));
}

/// The generation that the database shows, -1 when it is damaged.
int GetGeneration(const std::string& path) {
  SqliteFiles files(SystemFiles());
  if (Execute(files, path, "PRAGMA synchronous=OFF; PRAGMA integrity_check") != "ok") return -1;
  const std::string text = Execute(
      files, path, "SELECT min(g) FROM t HAVING count(*) = 40 AND min(g) = max(g) UNION SELECT -1");
  return text.find("error") == 0 ? -1 : std::stoi(text);
}

TEST(SqliteFiles, AnyFailureIsReportedAndLeavesTheDatabaseIntact) {
  for (const std::string mode : kModes) {
    std::uint64_t failures = 1;
    for (std::uint64_t i = 0; failures > 0; ++i) {
      SCOPED_TRACE(mode + " " + std::to_string(i));
      const TemporaryDirectory directory;
      MakeDatabase(directory / "db");
      FaultyFiles faulty(SystemFiles());
      SqliteFiles files(faulty);
      faulty.SetFault({i, i % 2 == 0 ? IoProblem::NO_SPACE : IoProblem::OTHER, i % 3 == 0, {}});
      const bool isStored = Execute(files, directory / "db", Prepare(mode) + Fill(2)) == mode;
      failures = faulty.GetFailures();
      EXPECT_NE(isStored && failures == 0, !files.GetLastFailure().empty());
      const int generation = GetGeneration(directory / "db");
      EXPECT_GE(generation, isStored ? 2 : 1);
      EXPECT_LE(generation, isStored || files.HasSyncFailed() ? 2 : 1);
    }
  }
}

TEST(SqliteFiles, AFullDiskAndAFailedSyncAreToldApart) {
  const struct {
    FileOperation kind;
    IoProblem problem;
    int code;
  } rows[] = {{FileOperation::OPEN, IoProblem::OTHER, SQLITE_CANTOPEN},
              {FileOperation::LOCK, IoProblem::OTHER, SQLITE_IOERR},
              {FileOperation::WRITE, IoProblem::OTHER, SQLITE_IOERR},
              {FileOperation::WRITE, IoProblem::NO_SPACE, SQLITE_FULL},
              {FileOperation::SYNC, IoProblem::OTHER, SQLITE_IOERR}};
  for (const auto& row : rows) {
    const TemporaryDirectory directory;
    MakeDatabase(directory / "db");
    FaultyFiles faulty(SystemFiles());
    SqliteFiles files(faulty);
    faulty.SetFault({0, row.problem, true, {row.kind}});
    EXPECT_EQ(Execute(files, directory / "db", Prepare("truncate") + Fill(2)),
              "error " + std::to_string(row.code));
    EXPECT_EQ(files.HasSyncFailed(), row.kind == FileOperation::SYNC);
  }
}

/// The number of crash states that lack what was acknowledged.
int CountLosses(const std::string& mode, bool honoursSyncs) {
  const TemporaryDirectory directory;
  MakeDatabase(directory / "db");
  CrashLog log(SystemFiles(), directory.GetPath());
  SqliteFiles files(log);
  std::vector<std::size_t> saves;  // how long the log was after each
  for (int generation = 2; generation <= 4; ++generation) {
    EXPECT_EQ(Execute(files, directory / "db", Prepare(mode) + Fill(generation)), mode);
    saves.push_back(log.GetSize());
  }
  int losses = 0;
  for (std::size_t count = 0; count <= log.GetSize(); count += 5) {
    const auto next = std::upper_bound(saves.begin(), saves.end(), count);
    const auto expected = 1 + (next - saves.begin());
    for (std::uint32_t seed = 0; seed < 4; ++seed) {
      const TemporaryDirectory state;
      log.BuildCrashState(count, seed, state.GetPath(), honoursSyncs);
      const int generation = GetGeneration(state / "db");
      if (generation < expected || generation > expected + 1) ++losses;
    }
  }
  return losses;
}

TEST(SqliteFiles, ACrashLosesNothingThatWasAcknowledged) {
  for (const std::string mode : kModes) {
    EXPECT_EQ(CountLosses(mode, true), 0) << mode;
    EXPECT_GT(CountLosses(mode, false), 0) << mode;
  }
}

TEST(SqliteFiles, AnImmutableDatabaseIsOnlyRead) {
  const TemporaryDirectory directory;
  MakeDatabase(directory / "db");
  FaultyFiles counting(SystemFiles());
  SqliteFiles files(counting);
  const std::string name = "file:" + directory / "db" + "?immutable=1";
  EXPECT_EQ(Execute(files, name, "SELECT count(*) FROM t"), "40");
  EXPECT_NE(Execute(files, name, Fill(2)).find("error"), std::string::npos);
  EXPECT_EQ(counting.GetCount(FileOperation::WRITE) + counting.GetCount(FileOperation::LOCK), 0u);
}

}  // namespace
}  // namespace qelta::test
