#include "Databases.h"

#include <FED_FileDatabase.h>
#include <FED_LogMacros.h>
#include <FrdSource.h>
#include <QeltaOutputFile.h>
#ifdef QELTA_HDF5
#include <QeltaHdf5.h>
#endif
#include <QeltaStringUtil.h>

#include <CLI/CLI.hpp>
#include <filesystem>

namespace qelta {
namespace {

std::wstring ToWide(const std::string& name) {
  std::wstring wide;
  if (!QeltaStringUtil::ToWide(name, wide)) {
    throw CLI::ValidationError("The name '" + name + "' is not in UTF-8.");
  }
  return wide;
}

std::unique_ptr<FED_FileDatabase> Open(const std::string& name, FED_DatabaseDefs::AccessMode mode,
                                       std::uint64_t cacheBytes) {
  auto database = std::make_unique<FED_FileDatabase>();
  database->InitDb(FED_IdMapsPool(), mode, cacheBytes, ToWide(name));
  return database;
}

// For writing, which would make a database where there is none.
std::unique_ptr<FED_FileDatabase> OpenExisting(const std::string& name) {
  Open(name, FED_DatabaseDefs::READ_ONLY, 0);
  return Open(name, FED_DatabaseDefs::READ_WRITE, 0);
}

DatabaseReport ToReport(FED_FileDatabase::Report report) {
  return {report.blocks, report.bytes, std::move(report.problems)};
}

}  // namespace

bool IsDatabase(const std::string& name) {
  std::error_code error;
  return std::filesystem::is_directory(std::filesystem::u8path(name), error);
}

std::unique_ptr<FED_Database> OpenDatabase(const std::string& name,
                                           FED_DatabaseDefs::AccessMode mode,
                                           std::uint64_t cacheBytes) {
  return Open(name, mode, cacheBytes);
}

std::unique_ptr<FED_Database> OpenExistingDatabase(const std::string& name) {
  return OpenExisting(name);
}

void SaveDatabase(FED_Database& database) { dynamic_cast<FED_FileDatabase&>(database).Save(); }

void DiscardChanges(std::unique_ptr<FED_Database> database) {
  const auto ignore = [](void*, FED_LogMacros::LogMsgType, const char*, int, const char*,
                         const char*) {};
  FED_LogMacros::SetSink(ignore, nullptr);
  database.reset();
}

// Its files go before its lock does: nobody else can have saved there. Where the system does not
// remove open files, there is a moment in between.
void DiscardDatabase(std::unique_ptr<FED_Database> database, const std::string& name) {
  std::error_code error;
  std::filesystem::remove_all(std::filesystem::u8path(name), error);
  DiscardChanges(std::move(database));
  if (error) std::filesystem::remove_all(std::filesystem::u8path(name), error);
}

DatabaseReport VerifyDatabase(const std::string& name, const DatabaseProgress& progress) {
  return ToReport(Open(name, FED_DatabaseDefs::READ_ONLY, 0)->Verify(progress));
}

DatabaseReport SalvageDatabase(const std::string& name, const std::string& target,
                               const DatabaseProgress& progress) {
  return ToReport(FED_FileDatabase::Salvage(ToWide(name), ToWide(target), progress));
}

void CompactDatabase(const std::string& name, const DatabaseProgress& progress) {
  OpenExisting(name)->Compact(progress);
}

void BackupDatabase(const std::string& name, const std::string& target,
                    const DatabaseProgress& progress) {
  Open(name, FED_DatabaseDefs::READ_ONLY, 0)->Backup(ToWide(target), progress);
}

bool IsDeviceFailure(const FED_Exception& failure) {
#ifdef QELTA_HDF5
  if (IsHdf5DeviceFailure(failure)) return true;
#endif
  return FED_FileDatabase::IsSystemFailure(failure) ||
         failure.GetMessageId() == FrdSource::kReadErrorId || QeltaOutputFile::IsFailure(failure);
}

bool IsRefusal(const FED_Exception& failure) { return FED_FileDatabase::IsRefusal(failure); }

}  // namespace qelta
