#include "IdMapStore.h"

#include <xxhash.h>

#include <algorithm>

#include "BlockLayout.h"
#include "ChunkStream.h"
#include "Damage.h"
#include "FED_LogMacros.h"
#include "FED_OnfMetaData.h"
#include "FileStore.h"
#include "IdMapCode.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|IdMapStore";

[[noreturn]] void FailDamaged(std::int32_t type, const std::string& what) {
  const bool isType = 0 <= type && type < 16;
  throw Damage("220300000061",
               "The id map of type '" +
                   (isType ? FED_ID_TYPE_INFO[type].name : std::to_string(type)) +
                   "' is damaged: " + what +
                   ". Salvage the database to copy what is intact, or restore a backup.",
               kLocation);
}

std::uint64_t HashOf(const std::string& bytes) { return XXH3_64bits(bytes.data(), bytes.size()); }

bool IsSame(const StoredChunk& a, const StoredChunk& b) {
  return a.number == b.number && a.extent.offset == b.extent.offset &&
         a.extent.length == b.extent.length;
}

}  // namespace

// Only maps in memory count what they know.
bool IdMapStore::HasSignature(const FED_IdMapsPool& pool, FED_IdType type, Signature& signature) {
  const std::shared_ptr<const FED_IdMap> map = pool.ShareMap(type);
  const auto* const counted = dynamic_cast<const FED_MemoryIdMap*>(map.get());
  if (counted == nullptr) return false;
  signature = {map.get(), map, counted->GetCount(), counted->GetNameCount()};
  return true;
}

std::string IdMapStore::ReadBytes(FileStore& store, const IdMapRow& row, Entry& entry) {
  std::string bytes;
  std::vector<unsigned char> part;
  if (row.type < 0 || !UnpackChunks(row.chunks, entry.chunks)) {
    FailDamaged(row.type, "its list of chunks makes no sense");
  }
  for (const StoredChunk& chunk : entry.chunks) {
    if (chunk.extent.length > std::min<std::uint64_t>(row.bytes - bytes.size(), kChunkBytes)) {
      FailDamaged(row.type, "its chunks are too long");
    }
    const char* const problem = store.GetPayload().Read(chunk.extent, part);
    if (problem != nullptr) {
      FailDamaged(row.type, "at offset " + std::to_string(chunk.extent.offset) + " of " +
                                store.GetPayload().GetPath() + ": " + problem);
    }
    bytes.append(part.begin(), part.end());
  }
  if (bytes.size() != row.bytes) FailDamaged(row.type, "a part of it is missing");
  entry.hash = HashOf(bytes);
  return bytes;
}

void IdMapStore::Load(FileStore& store, FED_IdMapsPool& pool) {
  for (const IdMapRow& row : store.GetIdMaps()) {
    if (row.type < 0 || row.type >= static_cast<std::int32_t>(kTypes)) continue;
    Entry& entry = m_Entries[static_cast<std::size_t>(row.type)];
    const std::string bytes = ReadBytes(store, row, entry);
    const auto type = static_cast<FED_IdType>(row.type);
    FED_IdMap& map = pool.GetMap(type);
    const bool wasEmpty = map.GetMaxIndex() < 0;
    MergeIdMap(type, bytes, map);
    if (wasEmpty) HasSignature(pool, type, entry.saved);
  }
}

void IdMapStore::Prepare(FileStore& store, const IdMapStore& former) {
  std::array<std::string, kTypes> stored;
  for (const IdMapRow& row : store.GetIdMaps()) {
    if (row.type < 0 || row.type >= static_cast<std::int32_t>(kTypes)) continue;
    const auto place = static_cast<std::size_t>(row.type);
    stored[place] = ReadBytes(store, row, m_Entries[place]);
  }
  for (std::size_t i = 0; i < kTypes; ++i) {
    if (m_Entries[i].hash == former.m_Entries[i].hash) continue;
    const auto type = static_cast<FED_IdType>(i);
    m_Entries[i].fresh = std::make_shared<FED_MemoryIdMap>(type);
    MergeIdMap(type, stored[i], *m_Entries[i].fresh);
  }
}

void IdMapStore::Replace(FED_IdMapsPool& pool) {
  for (std::size_t i = 0; i < kTypes; ++i) {
    std::shared_ptr<FED_MemoryIdMap>& fresh = m_Entries[i].fresh;
    if (fresh != nullptr) pool.SetMap(static_cast<FED_IdType>(i), std::move(fresh));
  }
}

std::vector<IdMapRow> IdMapStore::Collect(FileStore& store, const FED_IdMapsPool& pool) {
  std::vector<IdMapRow> rows;
  for (std::size_t i = 0; i < kTypes; ++i) {
    const auto type = static_cast<FED_IdType>(i);
    IdMapRow row;
    if (CollectOne(store, type, pool, row)) rows.push_back(std::move(row));
  }
  return rows;
}

// What a map is now, and whether that is what is stored.
IdMapStore::Finding IdMapStore::Examine(const FED_IdMapsPool& pool, FED_IdType type,
                                        Snapshot& now) const {
  const Entry& entry = m_Entries[static_cast<std::size_t>(type)];
  const FED_IdMap& map = pool.GetMap(type);
  const bool isCounted = HasSignature(pool, type, now.signature);
  if (isCounted && !entry.isPending && now.signature == entry.saved) return Finding::UNTOUCHED;
  if (HidesEntities(map)) return Finding::HIDDEN;
  now.bytes = EncodeIdMap(map, now.entities);
  now.hash = HashOf(now.bytes);
  const bool isNone = now.bytes.empty() && entry.chunks.empty();
  return isNone || now.hash == entry.hash ? Finding::SAME : Finding::CHANGED;
}

bool IdMapStore::HaveChanged(const FED_IdMapsPool& pool) const {
  for (std::size_t i = 0; i < kTypes; ++i) {
    Snapshot now;
    if (Examine(pool, static_cast<FED_IdType>(i), now) == Finding::CHANGED) return true;
  }
  return false;
}

void IdMapStore::ReportHidden(Entry& entry, FED_IdType type, const FileStore& store) {
  if (entry.isReported) return;
  entry.isReported = true;
  FED_LogMacros::log_msg(FED_LogMacros::LOG_CONTINUED, __FILE__, __LINE__, kLocation,
                         "The id map of type '%s' is not stored in %s: it cannot be listed.",
                         FED_ID_TYPE_INFO[type].name.c_str(), store.GetDirectory().c_str());
}

bool IdMapStore::CollectOne(FileStore& store, FED_IdType type, const FED_IdMapsPool& pool,
                            IdMapRow& row) {
  Entry& entry = m_Entries[static_cast<std::size_t>(type)];
  Snapshot now;
  const Finding finding = Examine(pool, type, now);
  if (finding == Finding::HIDDEN) ReportHidden(entry, type, store);
  if (finding == Finding::HIDDEN || finding == Finding::UNTOUCHED) return false;
  if (entry.isPending) ReleaseUnshared(store, entry.collectedChunks, entry.chunks, 0);
  entry.isPending = false;
  if (finding == Finding::SAME) {
    entry.saved = now.signature;
    return false;
  }
  Write(store, now.bytes, entry);
  entry.collected = now.signature;
  entry.collectedHash = now.hash;
  row.type = type;
  row.entities = now.entities;
  row.bytes = now.bytes.size();
  row.chunks = PackChunks(entry.collectedChunks);
  return true;
}

// Chunks that are stored as they are now are kept.
void IdMapStore::Write(FileStore& store, const std::string& bytes, Entry& entry) {
  entry.collectedChunks.clear();
  entry.isPending = true;
  for (std::size_t at = 0; at < bytes.size(); at += kChunkBytes) {
    const std::size_t size = std::min(kChunkBytes, bytes.size() - at);
    const auto number = static_cast<std::uint32_t>(at / kChunkBytes);
    const std::uint64_t checksum = XXH3_64bits(&bytes[at], size);
    const bool isKept = number < entry.chunks.size() &&
                        entry.chunks[number].extent.checksum == checksum &&
                        entry.chunks[number].extent.length == size;
    entry.collectedChunks.reserve(number + std::size_t{1});
    const Extent extent =
        isKept ? entry.chunks[number].extent : store.StoreExtent(&bytes[at], size);
    entry.collectedChunks.push_back({Part::ID_MAP, number, extent});
  }
}

void IdMapStore::ReleaseUnshared(FileStore& store, const std::vector<StoredChunk>& chunks,
                                 const std::vector<StoredChunk>& kept, std::uint64_t birth) {
  for (const StoredChunk& chunk : chunks) {
    const bool isKept = std::any_of(kept.begin(), kept.end(),
                                    [&](const StoredChunk& other) { return IsSame(chunk, other); });
    if (!isKept) store.ReleaseExtent(chunk.extent, birth);
  }
}

void IdMapStore::Relocated(std::int32_t type, std::vector<StoredChunk>& chunks) noexcept {
  if (type < 0 || type >= static_cast<std::int32_t>(kTypes)) return;
  m_Entries[static_cast<std::size_t>(type)].chunks.swap(chunks);
}

void IdMapStore::Committed(FileStore& store) {
  for (Entry& entry : m_Entries) {
    if (!entry.isPending) continue;
    ReleaseUnshared(store, entry.chunks, entry.collectedChunks, ChunkStream::kOldestBirth);
    entry.chunks.swap(entry.collectedChunks);
    entry.saved = entry.collected;
    entry.hash = entry.collectedHash;
    entry.isPending = false;
  }
}

}  // namespace qelta
