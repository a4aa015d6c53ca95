// Writes the content of a database anew, without gaps, into another payload file.

#include <algorithm>
#include <utility>

#include "Damage.h"
#include "DatabaseDirectory.h"
#include "FED_ConstDataRecord.h"
#include "FileContent.h"
#include "FileSession.h"
#include "Maintenance.h"
#include "ProgressMeter.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|Compaction";

using Chunks = std::vector<StoredChunk>;

class Compaction {
 public:
  Compaction(FileSession& session, const FED_FileDatabase::Progress& progress)
      : m_Session(session), m_Store(session.GetStore()), m_Meter(progress) {}

  bool Run() {
    // A cursor may hold what no record refers to yet.
    if (FED_ConstDataRecord::s_InstanceCounter == 0) DropUnreferenced(m_Store);
    m_Moved.rows = m_Store.LoadRows();
    m_Meter.SetTotal(m_Moved.rows.CountBytes());
    m_Moved.name = FindName();
    const std::string path = m_Store.GetDirectory() + "/" + m_Moved.name;
    try {
      if (WriteAll(path)) return Switch();
    } catch (...) {
      Remove(path);
      throw;
    }
    Remove(path);
    return false;
  }

 private:
  // A file of another number may be what a commit refers to that failed in the middle.
  std::string FindName() {
    std::uint64_t last = 0;
    const DatabaseDirectory place(m_Store.GetFiles(), m_Store.GetDirectory());
    for (const std::string& name : place.ListPayloads()) {
      last = std::max(last, DatabaseDirectory::NumberOfPayload(name));
    }
    return DatabaseDirectory::NameOfPayload(last + 1);
  }

  bool WriteAll(const std::string& path) {
    const Uuid& uuid = m_Store.GetState().uuid;
    Payload::Create(m_Store.GetFiles(), path, uuid);
    m_Moved.payload = std::make_unique<Payload>(m_Store.GetFiles(), path, uuid, true);
    m_Moved.length = Payload::kHeaderSize;
    std::size_t owner = 0;
    for (BlockRow& row : m_Moved.rows.blocks) m_Moved.chunks.push_back(Copy(owner++, row.chunks));
    for (IdMapRow& row : m_Moved.rows.idMaps) m_IdMaps.push_back(Copy(owner++, row.chunks));
    if (!m_Meter.GoesOn()) return false;
    RequireUnchanged();
    m_Store.Sync(*m_Moved.payload);
    m_Store.GetFiles().SyncDirectory(m_Store.GetDirectory());
    return true;
  }

  // Makes `packed` say where the chunks are now.
  Chunks Copy(std::size_t owner, std::string& packed) {
    Chunks chunks;
    if (!m_Meter.GoesOn()) return chunks;
    if (!UnpackChunks(packed, chunks)) FailDamaged(owner, "its list of chunks makes no sense");
    for (StoredChunk& chunk : chunks) {
      Copy(owner, chunk);
      m_Done += chunk.extent.length;
      if (!m_Meter.Reach(m_Done)) break;
    }
    packed = PackChunks(chunks);
    return chunks;
  }

  void Copy(std::size_t owner, StoredChunk& chunk) {
    Payload& from = m_Store.GetPayload();
    if (const char* const problem = from.Read(chunk.extent, m_Buffer)) {
      FailDamaged(owner, Describe(chunk, from.GetPath()) + ": " + problem);
    }
    chunk.extent = m_Moved.payload->WriteAt(m_Moved.length, m_Buffer.data(), m_Buffer.size());
    m_Moved.length += chunk.extent.length;
  }

  [[noreturn]] void FailDamaged(std::size_t owner, const std::string& what) {
    throw Damage("220400000011",
                 "The database cannot be compacted. " + m_Moved.rows.TitleOf(owner) + ": " + what +
                     ". Salvage the database to copy what is intact, or restore a backup.",
                 kLocation);
  }

  // Nothing but `progress` can have come between.
  void RequireUnchanged() {
    if (m_Moved.rows.state.generation == m_Store.GetState().generation && !m_Store.HasChanges()) {
      return;
    }
    FED_Failure::Throw("220400000012", kLocation,
                       "The database %s was changed while it was compacted, which was given up. "
                       "Leave it alone where progress is reported.",
                       m_Store.GetDirectory().c_str());
  }

  // From here on the new file stays, whatever happens.
  bool Switch() {
    m_Switches = true;
    std::vector<std::int32_t> types;
    for (const IdMapRow& row : m_Moved.rows.idMaps) types.push_back(row.type);
    m_Store.Relocate(std::move(m_Moved));
    for (std::size_t i = 0; i < types.size(); ++i) {
      m_Session.GetIdMaps().Relocated(types[i], m_IdMaps[i]);
    }
    return true;
  }

  void Remove(const std::string& path) noexcept {
    if (m_Switches) return;
    m_Moved.payload.reset();
    try {
      m_Store.GetFiles().Remove(path);
    } catch (const std::exception&) {  // the next opening for writing removes it
    }
  }

  FileSession& m_Session;
  FileStore& m_Store;
  ProgressMeter m_Meter;
  FileStore::Relocation m_Moved;
  std::vector<Chunks> m_IdMaps;
  std::vector<unsigned char> m_Buffer;
  std::uint64_t m_Done = 0;
  bool m_Switches = false;
};

}  // namespace

CommitRows FileStore::LoadRows() {
  RequireUsable();
  CommitRows rows;
  m_Catalogue->Load(rows.Collect());
  return rows;
}

void FileStore::Relocate(Relocation&& moved) {
  CatalogueChanges changes;
  changes.state = m_State;
  changes.state.generation = m_LastAttempt + 1;
  changes.state.payload = moved.name;
  changes.state.payloadLength = moved.length;
  for (const BlockRow& row : moved.rows.blocks) changes.written.push_back(&row);
  changes.idMaps = moved.rows.idMaps;
  CommitCatalogue(changes);
  Relocated(moved, changes.state);
}

// The space follows from the rows, when it is needed.
void FileStore::Relocated(Relocation& moved, const CatalogueState& state) noexcept {
  m_State.generation = state.generation;
  m_State.payload.swap(moved.name);
  m_State.payloadLength = moved.length;
  m_Payload = std::move(moved.payload);
  m_Space.reset();
  auto unknown = m_Unknown.begin();  // in the same order
  for (std::size_t i = 0; i < moved.rows.blocks.size(); ++i) {
    BlockRow& row = moved.rows.blocks[i];
    const ContentPointer content = m_Contents.Find(row.key);
    if (content != nullptr) {
      content->Relocated(row, moved.chunks[i], state.generation);
    } else if (unknown != m_Unknown.end()) {
      (unknown++)->chunks.swap(row.chunks);
    }
  }
  m_IdMaps.swap(moved.rows.idMaps);
  try {
    m_Payload->Acknowledge(state.generation);
  } catch (const std::exception&) {  // it is committed all the same
  }
  RemoveOldPayloads();
  VacuumCatalogue();
}

void FileStore::VacuumCatalogue() noexcept {
  try {
    if (!m_Lock->HasReadersStarting()) m_Catalogue->Vacuum();
  } catch (const std::exception&) {  // the catalogue stays as large as it was
  }
  if (m_Catalogue->HasSyncFailed()) m_Problem = kSyncFailed;
}

bool Compact(FileSession& session, const FED_FileDatabase::Progress& progress) {
  const bool isDone = Compaction(session, progress).Run();
  session.GetStore().RequireUsable();
  return isDone;
}

}  // namespace qelta
