// How a store begins: what stands under the path, what it holds, who else is there.

#include <random>

#include "BlockLayout.h"
#include "Damage.h"
#include "DatabaseDirectory.h"
#include "FED_LogMacros.h"
#include "FED_Message.h"
#include "FileContent.h"
#include "FileStore.h"
#include "IoFailure.h"
#include "KeyCode.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|FileStore";

constexpr std::uint64_t kDefaultCache = std::uint64_t{256} << 20;
constexpr std::uint64_t kLeastCache = std::uint64_t{4} << 18;

Uuid MakeUuid() {
  Uuid uuid{};
  std::random_device random;
  for (unsigned char& byte : uuid) byte = static_cast<unsigned char>(random());
  return uuid;
}

}  // namespace

FileStore::FileStore(FileSystem& files, std::string directory, FED_DatabaseDefs::AccessMode mode,
                     std::uint64_t cacheSize)
    : m_Files(files),
      m_Directory(std::move(directory)),
      m_Mode(mode),
      m_ForkCount(FileSystem::GetForkCount()),
      m_Cache(std::max(cacheSize == 0 ? kDefaultCache : cacheSize, kLeastCache)) {
  if (IsWritable()) {
    OpenForWriting();
  } else {
    OpenForReading();
  }
  m_LastAttempt = m_State.generation;
}

void FileStore::OpenForReading() {
  if (DatabaseDirectory(m_Files, m_Directory).Look() != DatabaseDirectory::State::THERE) {
    FED_Failure::Throw("220300000051", kLocation, "There is no database %s. Check the path.",
                       m_Directory.c_str());
  }
  m_Lock = std::make_unique<DatabaseLock>(m_Files, m_Directory, false);
  m_Lock->BeginRead();
  const auto catalogue = DatabaseDirectory(m_Files, m_Directory).OpenCatalogueToRead();
  Load(*catalogue);
  OpenPayload(*catalogue);
  m_Lock->Hold(m_State.generation);
  m_Lock->EndRead();
}

void FileStore::OpenForWriting() {
  try {
    OpenOrCreate();
  } catch (const Damage& damage) {
    if (m_Mode != FED_DatabaseDefs::CREATE) throw;
    MoveAside(damage.GetMessageText());
    OpenOrCreate();
  }
}

void FileStore::OpenOrCreate() {
  const DatabaseDirectory place(m_Files, m_Directory);
  const DatabaseDirectory::State found = place.Look();
  const bool wasThere = found == DatabaseDirectory::State::THERE;
  if (found == DatabaseDirectory::State::ABSENT) MakeDirectory();
  if (m_Mode == FED_DatabaseDefs::CREATE) place.RequireNothingForeign();
  m_Lock = std::make_unique<DatabaseLock>(m_Files, m_Directory, true);
  // Another one may have made it meanwhile.
  if (!wasThere && place.Look() != DatabaseDirectory::State::THERE) CreateFiles();
  // Whoever made them may have been stopped before their names were durable.
  m_Files.SyncDirectory(m_Directory);
  SyncParent(wasThere);
  m_Catalogue = std::make_unique<Catalogue>(m_Files, PathOf(DatabaseDirectory::kCatalogue),
                                            Catalogue::Access::WRITE, m_Files.IsLocal(m_Directory));
  Load(*m_Catalogue);
  OpenPayload(*m_Catalogue);
  RemoveOldPayloads();
  if (m_Mode == FED_DatabaseDefs::CREATE) StartEmpty();
}

// Somebody else may make it at this moment; the lock tells who comes first.
void FileStore::MakeDirectory() {
  try {
    m_Files.MakeDirectory(m_Directory);
  } catch (const IoFailure& failure) {
    if (failure.GetProblem() != IoProblem::EXISTS) throw;
  }
}

// A place whose names may not be read was synced by whoever made the database.
void FileStore::SyncParent(bool wasThere) {
  try {
    m_Files.SyncDirectory(ParentOf(m_Directory));
  } catch (const IoFailure& failure) {
    if (!wasThere || failure.GetProblem() != IoProblem::DENIED) throw;
  }
}

void FileStore::CreateFiles() {
  CatalogueState state;
  state.uuid = MakeUuid();
  state.generation = 1;
  state.payload = DatabaseDirectory::NameOfPayload(1);
  state.payloadLength = Payload::kHeaderSize;
  Payload::Create(m_Files, PathOf(state.payload), state.uuid);
  Catalogue::Create(m_Files, PathOf(DatabaseDirectory::kCatalogue), state);
}

void FileStore::MoveAside(const std::string& reason) {
  m_Stored.clear();
  m_Contents.Clear();
  m_Unknown.clear();
  m_Aliases.clear();
  m_IdMaps.clear();
  m_Payload.reset();
  m_Catalogue.reset();
  if (m_Lock == nullptr) m_Lock = std::make_unique<DatabaseLock>(m_Files, m_Directory, true);
  m_Lock.reset();  // some systems rename no directory with open files
  const std::string target = DatabaseDirectory(m_Files, m_Directory).MoveAside();
  FED_LogMacros::log_msg(FED_LogMacros::LOG_CONTINUED, __FILE__, __LINE__, kLocation,
                         "The database %s is damaged and was renamed to %s: %s",
                         m_Directory.c_str(), target.c_str(), reason.c_str());
}

// All that is stored stays as it is until the first commit, which removes it.
void FileStore::StartEmpty() {
  const std::uint64_t length = m_State.payloadLength - Payload::kHeaderSize;
  m_Clears =
      m_Contents.GetCount() > 0 || !m_Unknown.empty() || !m_Aliases.empty() || !m_IdMaps.empty();
  m_Stored.clear();
  m_Contents.Clear();
  m_Unknown.clear();
  m_Aliases.clear();
  m_IdMaps.clear();
  std::vector<PayloadSpace::Range> used;
  if (length > 0) used.emplace_back(Payload::kHeaderSize, length);
  m_Space = std::make_unique<PayloadSpace>(Payload::kHeaderSize, used, m_State.payloadLength,
                                           m_State.generation);
  m_Space->Release({Payload::kHeaderSize, length, 0}, ChunkStream::kOldestBirth);
}

void FileStore::Load(Catalogue& catalogue) {
  Catalogue::Visitor visitor;
  visitor.state = [this](const CatalogueState& state) { m_State = state; };
  visitor.block = [this](BlockRow&& row) { LoadBlock(std::move(row)); };
  visitor.alias = [this](AliasRow&& row) { m_Aliases.push_back(std::move(row)); };
  visitor.idMap = [this](IdMapRow&& row) { m_IdMaps.push_back(std::move(row)); };
  catalogue.Load(visitor);
}

void FileStore::LoadBlock(BlockRow&& row) {
  FED_DataDescriptor descriptor;
  if (!DecodeKey(row.key, descriptor)) {
    throw Damage("220300000052",
                 "The catalogue of the database " + m_Directory +
                     " is damaged: a block has no valid key. Salvage it.",
                 kLocation);
  }
  if (!IsKnownHere(descriptor, row.format)) {
    FED_LogMacros::log_msg(FED_LogMacros::LOG_CONTINUED, __FILE__, __LINE__, kLocation,
                           "Block %s of the database %s is left out: its kind, of format '%s', is "
                           "not known here or has another format.",
                           descriptor.ToString().c_str(), m_Directory.c_str(), row.format.c_str());
    m_Unknown.push_back(std::move(row));
    return;
  }
  const auto content = std::make_shared<FileContent>(*this, std::move(row), true);
  m_Stored.emplace_back(descriptor, content);
  m_Contents.Insert(content);
}

void FileStore::OpenPayload(Catalogue& catalogue) {
  m_Payload =
      std::make_unique<Payload>(m_Files, PathOf(m_State.payload), m_State.uuid, IsWritable());
  // A writer may have committed since the catalogue was loaded.
  const std::uint64_t acknowledged = m_Payload->ReadAcknowledged();
  if (acknowledged <= m_State.generation) return;
  if (acknowledged <= catalogue.ReadState().generation) return;
  throw Damage("220300000053",
               FED_MESSAGE("The database %s is damaged: its catalogue shows save %Iu, but save %Iu "
                           "was made. Salvage it to copy what is there, or restore a backup.",
                           m_Directory.c_str(), m_State.generation, acknowledged),
               kLocation);
}

// What a compaction left, as soon as no reader can look at it.
void FileStore::RemoveOldPayloads() noexcept {
  try {
    const DatabaseDirectory place(m_Files, m_Directory);
    const std::vector<std::string> names = place.ListPayloads();
    if (names.size() < 2 || m_Lock->HasReadersStarting()) return;
    if (!m_Lock->GetReaderGenerations(0, m_State.generation - 1).empty()) return;
    for (const std::string& name : names) {
      if (name != m_State.payload) m_Files.Remove(PathOf(name));
    }
  } catch (const std::exception&) {  // another time
  }
}

}  // namespace qelta
