#include "Databases.h"

#include <FED_Failure.h>
#include <FrdSource.h>

#include <filesystem>

namespace qelta {
namespace {

[[noreturn]] void ThrowMissing(const std::string& name) {
  FED_Failure::Throw("", "|%P|qelta|Databases",
                     "%s: this version keeps no databases on disk; name a result file (.frd).",
                     name.c_str());
}

}  // namespace

bool IsDatabase(const std::string& name) {
  std::error_code error;
  return std::filesystem::is_directory(name, error);
}

std::unique_ptr<FED_Database> OpenDatabase(const std::string& name,
                                           FED_DatabaseDefs::AccessMode /*mode*/,
                                           std::uint64_t /*cacheBytes*/) {
  ThrowMissing(name);
}

void SaveDatabase(FED_Database& /*database*/) {}

DatabaseReport VerifyDatabase(const std::string& name, const DatabaseProgress& /*progress*/) {
  ThrowMissing(name);
}

DatabaseReport SalvageDatabase(const std::string& name, const std::string& /*target*/,
                               const DatabaseProgress& /*progress*/) {
  ThrowMissing(name);
}

void CompactDatabase(const std::string& name, const DatabaseProgress& /*progress*/) {
  ThrowMissing(name);
}

void BackupDatabase(const std::string& name, const std::string& /*target*/,
                    const DatabaseProgress& /*progress*/) {
  ThrowMissing(name);
}

bool IsDeviceFailure(const FED_Exception& failure) {
  return failure.GetMessageId() == FrdSource::kReadErrorId;
}

}  // namespace qelta
