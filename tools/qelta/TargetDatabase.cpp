#include "TargetDatabase.h"

#include <FED_MemoryDatabase.h>

#include "Databases.h"

namespace qelta {

std::unique_ptr<FED_Database> OpenTarget(const std::string& name, bool isDryRun,
                                         std::uint64_t cacheBytes) {
  if (!isDryRun) return OpenDatabase(name, FED_DatabaseDefs::READ_WRITE, cacheBytes);
  if (IsDatabase(name)) return OpenDatabase(name, FED_DatabaseDefs::READ_ONLY, cacheBytes);
  auto empty = std::make_unique<FED_MemoryDatabase>();
  empty->InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"");
  return empty;
}

std::string CountText(std::uint64_t number, const std::string& what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

}  // namespace qelta
