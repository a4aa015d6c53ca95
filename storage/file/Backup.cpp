// Copies a commit of a database while others work with it.

#include "Damage.h"
#include "DatabaseDirectory.h"
#include "HeldCommit.h"
#include "Maintenance.h"
#include "Payload.h"
#include "ProgressMeter.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|Backup";

// A directory in the making under another name. Whoever else makes one there is kept out.
class PartialDirectory {
 public:
  PartialDirectory(FileSystem& files, const std::string& target)
      : m_Files(files), m_Target(target), m_Path(target + ".partial") {
    if (files.GetKind(target) != PathKind::NOTHING) {
      FED_Failure::Throw("220400000021", kLocation,
                         "The database cannot be copied to %s, which exists. Choose another name.",
                         target.c_str());
    }
  }

  ~PartialDirectory() {
    if (m_IsDone) return;
    try {
      if (m_IsOurs) RemoveAll();
      if (m_IsMade) m_Files.RemoveDirectory(m_Path);
    } catch (const std::exception&) {  // the next one starts with removing it
    }
  }

  void Make() {
    if (m_Files.GetKind(m_Path) == PathKind::NOTHING) {
      m_Files.MakeDirectory(m_Path);
      m_IsMade = true;
    }
    DatabaseDirectory(m_Files, m_Path).RequireNothingForeign();
    m_Lock = std::make_unique<DatabaseLock>(m_Files, m_Path, true);
    m_IsMade = m_IsOurs = true;
    RemoveFiles();
  }

  std::string PathOf(const std::string& name) const { return m_Path + "/" + name; }

  void Finish() {
    m_Files.SyncDirectory(m_Path);
    m_Lock.reset();
    m_Files.Rename(m_Path, m_Target);
    m_IsDone = true;
    m_Files.SyncDirectory(ParentOf(m_Target));
  }

 private:
  void RemoveFiles() {
    for (const std::string& name : m_Files.List(m_Path)) {
      if (name != "lock") m_Files.Remove(PathOf(name));
    }
  }

  void RemoveAll() {
    RemoveFiles();
    m_Lock.reset();
    m_Files.Remove(PathOf("lock"));
  }

  FileSystem& m_Files;
  std::string m_Target;
  std::string m_Path;
  std::unique_ptr<DatabaseLock> m_Lock;
  bool m_IsMade = false;
  bool m_IsOurs = false;  // locked, at least for some time
  bool m_IsDone = false;
};

// False when no more is wanted.
bool CopyContent(const CommitRows& rows, Payload& from, Payload& to,
                 const FED_FileDatabase::Progress& progress) {
  ProgressMeter meter(progress);
  meter.SetTotal(rows.CountBytes());
  std::vector<unsigned char> bytes;
  std::uint64_t done = 0;
  for (const auto& [chunk, owner] : rows.ListChunks()) {
    bytes.resize(static_cast<std::size_t>(chunk.extent.length));
    if (const char* const problem = from.Read(chunk.extent, bytes.data())) {
      throw Damage("220400000022",
                   "The database cannot be copied. " + rows.TitleOf(owner) + ": " +
                       Describe(chunk, from.GetPath()) + ": " + problem +
                       ". Salvage the database to copy what is intact.",
                   kLocation);
    }
    to.WriteAt(chunk.extent.offset, bytes.data(), bytes.size());
    done += bytes.size();
    if (!meter.Reach(done)) return false;
  }
  return true;
}

}  // namespace

bool Backup(FileSystem& files, const std::string& directory, const std::string& target,
            const FED_FileDatabase::Progress& progress) {
  HeldCommit held(files, directory);
  PartialDirectory partial(files, target);
  partial.Make();
  const std::string catalogue = partial.PathOf(DatabaseDirectory::kCatalogue);
  held.GetCatalogue().CopyInto(catalogue);
  CommitRows rows;
  Catalogue(files, catalogue, Catalogue::Access::READ, false).Load(rows.Collect());
  const CatalogueState& state = rows.state;
  Payload from(files, directory + "/" + state.payload, state.uuid, false);
  held.Hold(state.generation);

  Payload::Create(files, partial.PathOf(state.payload), state.uuid);
  {
    Payload to(files, partial.PathOf(state.payload), state.uuid, true);
    to.Acknowledge(state.generation);
    if (!CopyContent(rows, from, to, progress)) return false;
    to.Sync();
  }
  partial.Finish();
  return true;
}

}  // namespace qelta
