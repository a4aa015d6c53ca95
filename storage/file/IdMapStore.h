#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "Extent.h"
#include "FED_IdMapsPool.h"
#include "FED_IdType.h"
#include "FED_MemoryIdMap.h"

namespace qelta {

class FileStore;

/// Keeps the id maps of a pool stored beside the blocks.
class IdMapStore {
 public:
  /// Fills the maps of the pool with what is stored; see MergeIdMap for what is a failure.
  void Load(FileStore& store, FED_IdMapsPool& pool);

  /// Prepares for a store that was opened anew, in the place of what `former` loaded: makes fresh
  /// maps of what is stored otherwise now.
  void Prepare(FileStore& store, const IdMapStore& former);
  /// Puts the fresh maps into the pool. Never fails.
  void Replace(FED_IdMapsPool& pool);

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

  // Tells one state of a map from another. A map that comes where another one was has another
  // owner.
  struct Signature {
    const FED_IdMap* map = nullptr;
    std::weak_ptr<const FED_IdMap> owner;
    std::uint64_t entities = 0;
    std::uint64_t names = 0;

    bool operator==(const Signature& other) const {
      return map == other.map && !owner.owner_before(other.owner) &&
             !other.owner.owner_before(owner) && entities == other.entities && names == other.names;
    }
  };

  struct Entry {
    Signature saved;
    Signature collected;
    std::uint64_t hash = 0;  // of the bytes that are stored
    std::uint64_t collectedHash = 0;
    std::vector<StoredChunk> chunks;
    std::vector<StoredChunk> collectedChunks;
    std::shared_ptr<FED_MemoryIdMap> fresh;  // until it is put into the pool
    bool isPending = false;
    bool isReported = false;
  };

  struct Snapshot {
    Signature signature;
    std::string bytes;
    std::uint64_t hash = 0;
    std::uint64_t entities = 0;
  };
  // A map that is untouched was not encoded, nor was one that hides what it has.
  enum class Finding { UNTOUCHED, HIDDEN, SAME, CHANGED };

  Finding Examine(const FED_IdMapsPool& pool, FED_IdType type, Snapshot& now) const;
  static void ReportHidden(Entry& entry, FED_IdType type, const FileStore& store);
  static void Write(FileStore& store, const std::string& bytes, Entry& entry);
  static bool HasSignature(const FED_IdMapsPool& pool, FED_IdType type, Signature& signature);
  static std::string ReadBytes(FileStore& store, const IdMapRow& row, Entry& entry);
  static void ReleaseUnshared(FileStore& store, const std::vector<StoredChunk>& chunks,
                              const std::vector<StoredChunk>& kept, std::uint64_t birth);
  bool CollectOne(FileStore& store, FED_IdType type, const FED_IdMapsPool& pool, IdMapRow& row);

  std::array<Entry, kTypes> m_Entries;
};

}  // namespace qelta
