#include "FED_FileDatabase.h"

#include <filesystem>
#include <system_error>

#include "FED_Failure.h"
#include "FED_FileDataBlock.h"
#include "FED_LogMacros.h"
#include "FileSession.h"
#include "IoFailure.h"
#include "Maintenance.h"
#include "QeltaStringUtil.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|FED_FileDatabase";

// Where the program is later must not matter.
std::string MakeAbsolute(const std::string& path) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(std::filesystem::u8path(path), error);
  if (error) {
    FED_Failure::Throw("220300000085", kLocation,
                       "The database '%s' cannot be found from the current directory: %s. Give its "
                       "whole path.",
                       path.c_str(), error.message().c_str());
  }
  return absolute.generic_u8string();
}

// The path as the file system takes it, whole and without '/' at the end.
std::string PathOf(const std::wstring& name) {
  std::string path;
  if (!QeltaStringUtil::ToUtf8(name, path) || path.empty()) {
    FED_Failure::Throw("220300000081", kLocation,
                       "The name of the database is %s. Give the path of a directory.",
                       path.empty() && name.empty() ? "empty" : "no valid text");
  }
  path = MakeAbsolute(path);
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace

FED_FileDatabase::FED_FileDatabase() : FED_FileDatabase(qelta::SystemFiles()) {}

FED_FileDatabase::FED_FileDatabase(qelta::FileSystem& files) : m_Files(files) {}

FED_FileDatabase::~FED_FileDatabase() {
  try {
    FED_FileDatabase::CloseDb();
  } catch (...) {  // nothing that anybody could still do
  }
  m_BlockSet.Clear();
}

void FED_FileDatabase::RequireOpen() const {
  if (m_Session == nullptr) {
    FED_Failure::Throw("220300000082", kLocation,
                       "The database is not open; call InitDb before, and CloseDb last.");
  }
}

void FED_FileDatabase::OpenDb(FED_DatabaseDefs::AccessMode mode, std::uint64_t cacheSize,
                              const std::wstring& name, const FED_IdMapsPool& pool) {
  BeginOpen(mode, pool);
  auto store =
      std::make_shared<qelta::FileStore>(m_Files, PathOf(name), mode, GetCacheSize(cacheSize));
  try {
    m_Session = std::make_unique<qelta::FileSession>(std::move(store), m_BlockSet, GetIdMapsPool());
  } catch (...) {
    m_BlockSet.Clear();
    throw;
  }
  FinishOpen();
}

void FED_FileDatabase::CloseDb() {
  if (m_Session == nullptr) return;
  const bool discards = m_Session->HasChanges(m_BlockSet, GetIdMapsPool());
  if (discards) {
    FED_LogMacros::log_msg(FED_LogMacros::LOG_CONTINUED, __FILE__, __LINE__, kLocation,
                           "The database %s is closed without a save: changes to %Iu blocks, and "
                           "to names and ids, are discarded.",
                           m_Session->GetStore().GetDirectory().c_str(),
                           static_cast<std::uint64_t>(m_Session->GetStore().CountChanged()));
  }
  FinishClose();
  const qelta::FileStore& store = m_Session->GetStore();
  if (!discards && store.IsWritable() && store.IsUsable()) qelta::DropUnreferenced(*m_Session);
  m_Session.reset();
}

FED_DataBlock& FED_FileDatabase::Create(const FED_DataDescriptor& descriptor, int properties,
                                        const std::string* format) {
  RequireCreatable(descriptor);
  const auto& store = m_Session->GetPointer();
  const FED_DataDescriptor key = descriptor.Duplicate();
  auto* const block = format == nullptr ? new FED_FileDataBlock(key, store)
                                        : new FED_FileDataBlock(key, *format, store);
  const std::string recordFormat = block->GetFormat();
  m_BlockSet.StoreDataBlockInstance(descriptor, block);
  try {
    block->Attach(store->Add(key, recordFormat, properties));
  } catch (...) {
    m_BlockSet.DeleteDataBlockInstance(key);
    throw;
  }
  return *block;
}

FED_DataBlock& FED_FileDatabase::CreateDataBlock(const FED_DataDescriptor& descriptor,
                                                 int properties, std::int64_t,
                                                 const std::string& format) {
  return Create(descriptor, properties, &format);
}

FED_DataBlock& FED_FileDatabase::CreateDataBlock(const FED_DataDescriptor& descriptor,
                                                 std::size_t) {
  return Create(descriptor, 0, nullptr);
}

FED_DataBlock* FED_FileDatabase::MakeStoredBlock(const FED_DataDescriptor& primary) {
  const auto& store = m_Session->GetPointer();
  const auto content = store->Find(primary);
  if (content == nullptr) return nullptr;
  store->RequireUsable();
  content->Open();
  const FED_DataDescriptor key = primary.Duplicate();
  auto* const block = key.Has(FED_DataDescriptor::ONF)
                          ? new FED_FileDataBlock(key, store)
                          : new FED_FileDataBlock(key, content->GetRow().format, store);
  block->Attach(content);
  return block;
}

std::uint64_t FED_FileDatabase::GetClosings() const { return m_Session->GetStore().GetClosings(); }

void FED_FileDatabase::Save() {
  RequireOpen();
  if (GetMode() == FED_DatabaseDefs::READ_ONLY) {
    FED_Failure::Throw("220300000083", kLocation,
                       "The database %s cannot be saved: it is open for reading only.",
                       m_Session->GetStore().GetDirectory().c_str());
  }
  m_Session->Save(m_BlockSet, GetIdMapsPool());
}

std::uint64_t FED_FileDatabase::GetGeneration() const {
  RequireOpen();
  return m_Session->GetStore().GetState().generation;
}

bool FED_FileDatabase::Refresh() {
  RequireOpen();
  qelta::FileStore& store = m_Session->GetStore();
  store.RequireUsable();
  if (store.IsWritable()) return false;
  const qelta::CatalogueState newest = store.ReadNewest();
  const bool isSame = newest.uuid == store.GetState().uuid;
  if (isSame && newest.generation == store.GetState().generation) return false;
  auto fresh = std::make_shared<qelta::FileStore>(m_Files, store.GetDirectory(), GetMode(),
                                                  store.GetCache().GetCapacity());
  if (fresh->GetState().uuid != store.GetState().uuid) {
    FED_Failure::Throw("220300000084", kLocation,
                       "Another database stands under the name %s now; close this one and open it "
                       "anew.",
                       store.GetDirectory().c_str());
  }
  auto next = m_Session->Prepare(std::move(fresh), m_BlockSet);
  SaveData();  // closes all blocks; a reader has nothing to save
  m_Session->MoveTo(std::move(next), m_BlockSet, GetIdMapsPool());
  return true;
}

FED_FileDatabase::Report FED_FileDatabase::Verify(const Progress& progress) {
  RequireOpen();
  return qelta::Verify(m_Session->GetStore(), progress);
}

FED_FileDatabase::Report FED_FileDatabase::Salvage(const std::wstring& target,
                                                   const Progress& progress) {
  RequireOpen();
  m_Session->GetStore().RequireUsable();
  return qelta::Salvage(m_Files, m_Session->GetStore().GetDirectory(), target, progress);
}

FED_FileDatabase::Report FED_FileDatabase::Salvage(const std::wstring& name,
                                                   const std::wstring& target,
                                                   const Progress& progress) {
  return qelta::Salvage(qelta::SystemFiles(), PathOf(name), target, progress);
}

bool FED_FileDatabase::Compact(const Progress& progress) {
  Save();
  return qelta::Compact(*m_Session, progress);
}

bool FED_FileDatabase::Backup(const std::wstring& target, const Progress& progress) {
  RequireOpen();
  m_Session->GetStore().RequireUsable();
  return qelta::Backup(m_Files, m_Session->GetStore().GetDirectory(), PathOf(target), progress);
}

bool FED_FileDatabase::IsSystemFailure(const FED_Exception& failure) {
  const auto* const refusal = dynamic_cast<const qelta::IoFailure*>(&failure);
  if (refusal == nullptr) return false;
  const qelta::IoProblem problem = refusal->GetProblem();
  return problem == qelta::IoProblem::NO_SPACE || problem == qelta::IoProblem::LOCKED ||
         problem == qelta::IoProblem::OTHER;
}

bool FED_FileDatabase::IsRefusal(const FED_Exception& failure) {
  return dynamic_cast<const qelta::IoFailure*>(&failure) != nullptr;
}
