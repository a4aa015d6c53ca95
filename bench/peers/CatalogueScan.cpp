#include "CatalogueScan.h"

#include <sqlite3.h>

#include <cstring>
#include <stdexcept>

namespace qelta::bench {
namespace {

// The mask of fields comes before the first of them.
constexpr std::size_t kIterationInKey = 2;

std::uint64_t IterationOf(sqlite3_stmt* row) {
  std::int32_t iteration;
  const char* const key = static_cast<const char*>(sqlite3_column_blob(row, 0));
  std::memcpy(&iteration, key + kIterationInKey, sizeof iteration);
  return static_cast<std::uint64_t>(iteration);
}

}  // namespace

std::uint64_t ScanCatalogue(const std::filesystem::path& database) {
  sqlite3* connection = nullptr;
  sqlite3_stmt* rows = nullptr;
  sqlite3_open_v2((database / "catalogue.sqlite").c_str(), &connection, SQLITE_OPEN_READONLY,
                  nullptr);
  sqlite3_prepare_v2(connection, "SELECT key, format, chunks FROM blocks", -1, &rows, nullptr);
  std::uint64_t sum = 0;
  int result;
  while ((result = sqlite3_step(rows)) == SQLITE_ROW) {
    sqlite3_column_text(rows, 1);
    sqlite3_column_blob(rows, 2);
    sum += IterationOf(rows);
  }
  sqlite3_finalize(rows);
  sqlite3_close(connection);
  if (result != SQLITE_DONE) throw std::runtime_error("the catalogue cannot be read");
  return sum;
}

}  // namespace qelta::bench
