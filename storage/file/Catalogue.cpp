#include "Catalogue.h"

#include "CatalogueReader.h"
#include "CatalogueSchema.h"
#include "CatalogueWriter.h"
#include "Damage.h"
#include "FileSystem.h"

namespace qelta {
namespace {

constexpr char kLocation[] = "|%P|QeltaFileStorage|Catalogue";

using Mode = SqliteConnection::Mode;

Mode ModeOf(Catalogue::Access access) {
  if (access == Catalogue::Access::WRITE) return Mode::WRITE;
  return access == Catalogue::Access::READ ? Mode::READ : Mode::IMMUTABLE;
}

bool HasTables(FileSystem& files, const std::string& path, Mode mode) {
  SqliteConnection connection(files, path, mode);
  return CountTables(connection) > 0;
}

}  // namespace

void Catalogue::Create(FileSystem& files, const std::string& path, const CatalogueState& state) {
  SqliteConnection connection(files, path, Mode::CREATE);
  if (CountTables(connection) > 0) {
    FED_Failure::Throw("220200000030", kLocation,
                       "A catalogue cannot be made in '%s', which holds tables already. Choose "
                       "another place.",
                       path.c_str());
  }
  connection.Execute("PRAGMA page_size=16384; PRAGMA synchronous=FULL;");
  SqliteTransaction transaction(connection, SqliteTransaction::Kind::WRITE);
  CreateTables(connection);
  CatalogueWriter(connection).Begin(state);
  transaction.Commit();
}

bool Catalogue::IsUnfinished(FileSystem& files, const std::string& path) {
  if (files.GetKind(path) == PathKind::NOTHING) return true;
  const bool isWritable = files.IsWritable(ParentOf(path));
  try {
    return !HasTables(files, path, isWritable ? Mode::READ : Mode::IMMUTABLE);
  } catch (const Damage&) {
    return false;
  } catch (const FED_Failure&) {
    if (!isWritable) throw;
    // What was cut off must be taken back before anything can be seen.
    return !HasTables(files, path, Mode::WRITE);
  }
}

Catalogue::Catalogue(FileSystem& files, const std::string& path, Access access, bool usesWal)
    : m_Files(files) {
  if (files.GetKind(path) != PathKind::FILE) {
    FED_Failure::Throw("220200000031", kLocation,
                       "There is no catalogue '%s'. Give the name of a database.", path.c_str());
  }
  m_Connection = std::make_unique<SqliteConnection>(files, path, ModeOf(access));
  CheckFormat(*m_Connection);
  if (access != Access::WRITE) return;
  PrepareForWriting(*m_Connection, usesWal);
  m_IsWriter = true;
}

Catalogue::~Catalogue() { Close(); }

void Catalogue::Load(const Visitor& visitor) { CatalogueReader(*m_Connection).Load(visitor); }

void Catalogue::LoadIntact(const Visitor& visitor, const DamageHandler& damage) {
  CatalogueReader(*m_Connection).LoadIntact(visitor, damage);
}

void Catalogue::VerifyColumns(const DamageHandler& damage) {
  CatalogueReader(*m_Connection).VerifyColumns(damage);
}

CatalogueState Catalogue::ReadState() { return ReadMeta(*m_Connection).state; }

void Catalogue::Commit(const CatalogueChanges& changes) {
  if (!m_Writer) m_Writer = std::make_unique<CatalogueWriter>(*m_Connection);
  m_Writer->Commit(changes);
  // SQLite keeps failures to itself when it moves committed pages out of the log.
  if (!HasSyncFailed()) return;
  FED_Failure::Throw("220200000032", kLocation,
                     "The system failed to sync the catalogue '%s': nobody knows what is on the "
                     "disk. Check the device, and open the database anew.",
                     m_Connection->GetPath().c_str());
}

bool Catalogue::HasSyncFailed() const { return m_Connection && m_Connection->HasSyncFailed(); }

void Catalogue::CopyInto(const std::string& path) {
  if (m_Files.GetKind(path) != PathKind::NOTHING) {
    FED_Failure::Throw("220200000033", kLocation,
                       "The catalogue '%s' cannot be copied to '%s', which exists. Choose another "
                       "place.",
                       m_Connection->GetPath().c_str(), path.c_str());
  }
  const std::string name = SqliteConnection::PlainName(path);
  SqliteStatement(*m_Connection, "VACUUM INTO ?").PutText(name).Run();
  m_Files.Open(path, OpenMode::READ_WRITE)->Sync();
  Catalogue(m_Files, path, Access::READ, false).Load({});
}

void Catalogue::Vacuum() { m_Connection->Execute("VACUUM"); }

void Catalogue::Close() {
  m_Writer.reset();
  if (!m_Connection) return;
  if (m_IsWriter && !HasSyncFailed()) {
    try {
      m_Connection->SetPatience(0);
      m_Connection->Execute("PRAGMA journal_mode=DELETE");
    } catch (const std::exception&) {
      // A reader may be loading: the log stays, and what it holds.
    }
  }
  m_Connection.reset();
}

void Catalogue::Abandon() {
  // Closing would touch the locks and the log that belong to the parent process.
  static_cast<void>(m_Writer.release());
  static_cast<void>(m_Connection.release());
}

}  // namespace qelta
