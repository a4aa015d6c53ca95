#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "DatabaseLock.h"
#include "FileSystem.h"

namespace qelta {

/// What a catalogue says as of one commit.
struct CommitRows {
  CatalogueState state;
  std::vector<BlockRow> blocks;
  std::vector<AliasRow> aliases;
  std::vector<IdMapRow> idMaps;

  /// Fills this, which outlives the visitor.
  Catalogue::Visitor Collect();

  /// Bytes of all chunks.
  std::uint64_t CountBytes() const;

  struct OwnedChunk {
    StoredChunk chunk;
    std::size_t owner;  // blocks, then id maps
  };
  /// All chunks, in the order of their offsets.
  std::vector<OwnedChunk> ListChunks() const;

  /// "Block ITERATION=1", "Id map 3"
  std::string TitleOf(std::size_t owner) const;
};

/// Reads the files of a database as any reader does, wherever else it is open. While this lives,
/// nothing that the commit refers to is overwritten or removed.
class HeldCommit {
 public:
  /// Fails when there is no database, or its catalogue cannot be opened at all.
  HeldCommit(FileSystem& files, const std::string& directory);

  Catalogue& GetCatalogue() { return *m_Catalogue; }

  /// Narrows what is held to the commit that was found. Called once, after all reading of rows.
  void Hold(std::uint64_t generation);

 private:
  DatabaseLock m_Lock;
  std::unique_ptr<Catalogue> m_Catalogue;
};

}  // namespace qelta
