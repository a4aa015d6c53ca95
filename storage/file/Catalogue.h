#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Extent.h"

namespace qelta {

class CatalogueWriter;
class FileSystem;
class SqliteConnection;

/// What the catalogue says about one block.
struct BlockRow {
  std::string key;     ///< of the primary descriptor, see KeyCode.h
  std::string format;  ///< of the records
  std::int32_t properties = 0;
  std::uint64_t records = 0;       ///< records that are there
  std::uint64_t span = 0;          ///< highest index + 1
  std::uint64_t handles = 0;       ///< strings and lists that are kept, dropped ones included
  std::uint64_t contentBytes = 0;  ///< length of CONTENTS
  std::string chunks;              ///< PackChunks
};

struct AliasRow {
  std::string alias;  ///< key of the further name
  std::string key;    ///< key of the block
};

struct IdMapRow {
  std::int32_t type = 0;  ///< FED_IdType
  std::uint64_t entities = 0;
  std::uint64_t bytes = 0;
  std::string chunks;  ///< PackChunks, part ID_MAP
};

/// The state of a database as of one commit.
struct CatalogueState {
  std::array<unsigned char, 16> uuid{};
  std::uint64_t generation = 0;
  std::string payload;              ///< file name
  std::uint64_t payloadLength = 0;  ///< where the last extent ends
};

/// What one commit changes. The state always holds; all else is a difference.
struct CatalogueChanges {
  CatalogueState state;
  bool clears = false;                   ///< everything goes first
  std::vector<std::string> deleted;      ///< keys of blocks; absent ones are fine
  std::vector<const BlockRow*> written;  ///< inserted or replaced
  bool replacesAliases = false;
  std::vector<AliasRow> aliases;  ///< all of them
  std::vector<IdMapRow> idMaps;   ///< inserted or replaced
};

/// What is found wrong while rows are read. The text is one line.
using DamageHandler = std::function<void(const std::string& what)>;

/// `catalogue.sqlite` of one database: what blocks there are, and where their content lies.
///
/// Every row carries a checksum, and the sum over all rows of a table stands in the meta row; Load
/// checks them all. Failures name the file and the row, and say what to do.
class Catalogue {
 public:
  enum class Access {
    READ,       ///< never writes
    IMMUTABLE,  ///< likewise, in a place where nobody can write
    WRITE
  };

  /// Makes the tables and the first meta row in a file that is absent or empty. One transaction;
  /// the file's name is not synced.
  static void Create(FileSystem& files, const std::string& path, const CatalogueState& state);

  /// True when the file is absent or holds no tables at all: what a creation that was cut off
  /// leaves behind. Takes back what a writer that was cut off left half done.
  static bool IsUnfinished(FileSystem& files, const std::string& path);

  /// Fails when the file is absent, is no catalogue, or has a newer format. Damage is a `Damage`,
  /// here as below.
  /// `usesWal`: whether a writer may keep a write-ahead log beside the file.
  Catalogue(FileSystem& files, const std::string& path, Access access, bool usesWal);
  ~Catalogue();
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;

  struct Visitor {
    std::function<void(const CatalogueState&)> state;  ///< first, once
    std::function<void(BlockRow&&)> block;             ///< in the order of first storing
    std::function<void(AliasRow&&)> alias;
    std::function<void(IdMapRow&&)> idMap;
  };

  /// Reads everything in one transaction. Damage is a failure, possibly after the visitor got a
  /// part.
  void Load(const Visitor& visitor);

  /// Reads what can be read; the visitor gets intact rows only, `damage` hears of the rest. Rows
  /// that cannot be reached from one end of a damaged table are looked for from the other.
  void LoadIntact(const Visitor& visitor, const DamageHandler& damage);

  /// Looks at what Load does not need: the columns for people's queries, and SQLite's indexes.
  void VerifyColumns(const DamageHandler& damage);

  /// The generation that is committed now, and nothing else.
  CatalogueState ReadState();

  /// One transaction, durable when it returns. After a failure the state before it holds, unless
  /// the failure says that syncing failed (`HasSyncFailed`), when nobody knows.
  void Commit(const CatalogueChanges& changes);
  bool HasSyncFailed() const;

  /// Writes a copy of what is committed into a new file, syncs it, and checks it as Load does.
  /// After a failure there may be a part of it.
  void CopyInto(const std::string& path);

  /// Drops free pages. Not while readers load.
  void Vacuum();

  /// Closes; nothing else may be called then. A writer leaves one file without a log behind, if no
  /// reader has it open. Never fails.
  void Close();

  /// Gives the connection up without touching the file: after a fork.
  void Abandon();

 private:
  FileSystem& m_Files;
  bool m_IsWriter = false;
  std::unique_ptr<SqliteConnection> m_Connection;
  std::unique_ptr<CatalogueWriter> m_Writer;  ///< made by the first commit
};

}  // namespace qelta
