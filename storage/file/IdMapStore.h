#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "Extent.h"
#include "FED_IdMapsPool.h"
#include "FED_IdType.h"

namespace qelta {

class FileStore;

/// Keeps the id maps of a pool stored beside the blocks.
class IdMapStore {
 public:
  /// Fills the maps of the pool with what is stored; see MergeIdMap for what is a failure.
  void Load(FileStore& store, FED_IdMapsPool& pool);

  /// Puts fresh maps with what is stored in the place of maps that are stored otherwise than
  /// `former` says.
  void Replace(FileStore& store, const IdMapStore& former, FED_IdMapsPool& pool);

  /// The rows of the maps that have changed since the last commit, their content written. Maps that
  /// cannot be listed are left out and logged.
  std::vector<IdMapRow> Collect(FileStore& store, const FED_IdMapsPool& pool);

  /// Whether Collect would find anything.
  bool HaveChanged(const FED_IdMapsPool& pool) const;

  /// The stored chunks of a map have another place. Nothing may be collected and not committed.
  void Relocated(std::int32_t type, std::vector<StoredChunk>& chunks) noexcept;

  /// What was collected last is part of a commit.
  void Committed(FileStore& store);

 private:
  static constexpr std::size_t kTypes = 16;

  // Tells one state of a map from another.
  struct Signature {
    const FED_IdMap* map = nullptr;
    std::uint64_t entities = 0;
    std::uint64_t names = 0;

    bool operator==(const Signature& other) const {
      return map == other.map && entities == other.entities && names == other.names;
    }
  };

  struct Entry {
    Signature saved;
    Signature collected;
    std::uint64_t hash = 0;  // of the bytes that are stored
    std::uint64_t collectedHash = 0;
    std::vector<StoredChunk> chunks;
    std::vector<StoredChunk> collectedChunks;
    bool isPending = false;
    bool isReported = false;
  };

  static bool HasSignature(const FED_IdMap& map, Signature& signature);
  static std::string ReadBytes(FileStore& store, const IdMapRow& row, Entry& entry);
  static void ReleaseUnshared(FileStore& store, const std::vector<StoredChunk>& chunks,
                              const std::vector<StoredChunk>& kept, std::uint64_t birth);
  bool CollectOne(FileStore& store, FED_IdType type, const FED_IdMap& map, IdMapRow& row);

  std::array<Entry, kTypes> m_Entries;
};

}  // namespace qelta
