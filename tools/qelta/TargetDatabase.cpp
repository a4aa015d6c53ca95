#include "TargetDatabase.h"

#include <FED_MemoryDatabase.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <system_error>
#include <utility>

#include "Databases.h"

namespace qelta {
namespace {

bool Exists(const std::string& name) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::u8path(name), error);
}

std::unique_ptr<FED_Database> Open(const std::string& name, bool isDryRun,
                                   std::uint64_t cacheBytes) {
  RequireTarget(name, false);
  if (!isDryRun) {
    return WithTarget(name,
                      [&] { return OpenDatabase(name, FED_DatabaseDefs::READ_WRITE, cacheBytes); });
  }
  if (IsDatabase(name)) return OpenDatabase(name, FED_DatabaseDefs::READ_ONLY, cacheBytes);
  auto empty = std::make_unique<FED_MemoryDatabase>();
  empty->InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"");
  return empty;
}

}  // namespace

TargetDatabase::TargetDatabase(std::string name, bool isDryRun, std::uint64_t cacheBytes)
    : m_Name(std::move(name)),
      m_IsDryRun(isDryRun),
      m_IsNew(!Exists(m_Name)),
      m_Database(Open(m_Name, isDryRun, cacheBytes)) {
  // Somebody may have been faster.
  m_IsNew = m_IsNew && m_Database->FindBlocks({}).empty();
}

TargetDatabase::~TargetDatabase() {
  if (m_IsSaved || m_IsDryRun) return;
  if (m_IsNew) {
    DiscardDatabase(std::move(m_Database), m_Name);
  } else {
    DiscardChanges(std::move(m_Database));
  }
}

void TargetDatabase::Save() {
  Console::ThrowIfInterrupted();
  if (m_IsNew && !m_IsSaved && m_Database->FindBlocks({}).empty()) return;
  WithTarget(m_Name, [this] { SaveDatabase(*m_Database); });
  m_IsSaved = true;
}

void RequireTarget(const std::string& name, bool isNew) {
  if (name == "-") {
    throw CLI::ValidationError(
        "A database is a directory and cannot be written to the standard output; name one.");
  }
  if (Exists(name) && (isNew || !IsDatabase(name))) {
    throw CLI::ValidationError(name +
                               (isNew ? " exists" : " is a file, but a database is a directory") +
                               ". Choose another name.");
  }
}

void ThrowIfRefused(const FED_Exception& failure, const std::string& target) {
  const std::string path = target.substr(0, target.find_last_not_of("/\\") + 1);
  const bool isItsOwn = failure.GetMessageText().find(path) != std::string::npos;
  if (isItsOwn && IsRefusal(failure)) throw TargetFailure(failure.what());
}

std::string CountText(std::uint64_t number, const std::string& what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

}  // namespace qelta
