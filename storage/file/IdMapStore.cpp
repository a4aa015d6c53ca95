#include "IdMapStore.h"

#include <xxhash.h>

#include <algorithm>
#include <memory>

#include "ChunkStream.h"
#include "Damage.h"
#include "FED_LogMacros.h"
#include "FED_MemoryIdMap.h"
#include "FED_OnfMetaData.h"
#include "FileStore.h"
#include "IdMapCode.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|IdMapStore";
constexpr std::size_t kChunkBytes = std::size_t{256} * 1024;

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
bool IdMapStore::HasSignature(const FED_IdMap& map, Signature& signature) {
  const auto* const counted = dynamic_cast<const FED_MemoryIdMap*>(&map);
  if (counted == nullptr) return false;
  signature = {&map, counted->GetCount(), counted->GetNameCount()};
  return true;
}

std::string IdMapStore::ReadBytes(FileStore& store, const IdMapRow& row, Entry& entry) {
  std::string bytes;
  if (row.type < 0 || !UnpackChunks(row.chunks, entry.chunks)) {
    FailDamaged(row.type, "its list of chunks makes no sense");
  }
  for (const StoredChunk& chunk : entry.chunks) {
    const std::size_t at = bytes.size();
    if (chunk.extent.length > row.bytes - at) FailDamaged(row.type, "its chunks are too long");
    bytes.resize(at + static_cast<std::size_t>(chunk.extent.length));
    const char* const problem = store.GetPayload().Read(chunk.extent, &bytes[at]);
    if (problem != nullptr) {
      FailDamaged(row.type, "at offset " + std::to_string(chunk.extent.offset) + " of " +
                                store.GetPayload().GetPath() + ": " + problem);
    }
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
    if (wasEmpty) HasSignature(map, entry.saved);
  }
}

void IdMapStore::Replace(FileStore& store, const IdMapStore& former, FED_IdMapsPool& pool) {
  for (const IdMapRow& row : store.GetIdMaps()) {
    if (row.type < 0 || row.type >= static_cast<std::int32_t>(kTypes)) continue;
    const auto place = static_cast<std::size_t>(row.type);
    const std::string bytes = ReadBytes(store, row, m_Entries[place]);
    if (m_Entries[place].hash == former.m_Entries[place].hash) continue;
    const auto type = static_cast<FED_IdType>(row.type);
    const auto map = std::make_shared<FED_MemoryIdMap>(type);
    MergeIdMap(type, bytes, *map);
    pool.SetMap(type, map);
  }
}

std::vector<IdMapRow> IdMapStore::Collect(FileStore& store, const FED_IdMapsPool& pool) {
  std::vector<IdMapRow> rows;
  for (std::size_t i = 0; i < kTypes; ++i) {
    const auto type = static_cast<FED_IdType>(i);
    IdMapRow row;
    if (CollectOne(store, type, pool.GetMap(type), row)) rows.push_back(std::move(row));
  }
  return rows;
}

bool IdMapStore::HaveChanged(const FED_IdMapsPool& pool) const {
  for (std::size_t i = 0; i < kTypes; ++i) {
    const FED_IdMap& map = pool.GetMap(static_cast<FED_IdType>(i));
    Signature now;
    if (HasSignature(map, now) && now == m_Entries[i].saved) continue;
    if (HidesEntities(map)) continue;
    std::uint64_t entities = 0;
    const std::string bytes = EncodeIdMap(map, entities);
    const bool isStored = !m_Entries[i].chunks.empty();
    if (bytes.empty() ? isStored : HashOf(bytes) != m_Entries[i].hash) return true;
  }
  return false;
}

bool IdMapStore::CollectOne(FileStore& store, FED_IdType type, const FED_IdMap& map,
                            IdMapRow& row) {
  Entry& entry = m_Entries[static_cast<std::size_t>(type)];
  Signature now;
  const bool isCounted = HasSignature(map, now);
  if (isCounted && !entry.isPending && now == entry.saved) return false;
  if (HidesEntities(map)) {
    if (entry.isReported) return false;
    entry.isReported = true;
    FED_LogMacros::log_msg(FED_LogMacros::LOG_CONTINUED, __FILE__, __LINE__, kLocation,
                           "The id map of type '%s' is not stored in %s: it cannot be listed.",
                           FED_ID_TYPE_INFO[type].name.c_str(), store.GetDirectory().c_str());
    return false;
  }
  const std::string bytes = EncodeIdMap(map, row.entities);
  const std::uint64_t hash = HashOf(bytes);
  if (entry.isPending) ReleaseUnshared(store, entry.collectedChunks, entry.chunks, 0);
  entry.isPending = false;
  if (hash == entry.hash || (bytes.empty() && entry.chunks.empty())) {
    entry.saved = now;
    return false;
  }
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
  entry.collected = now;
  entry.collectedHash = hash;
  row.type = type;
  row.bytes = bytes.size();
  row.chunks = PackChunks(entry.collectedChunks);
  return true;
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
