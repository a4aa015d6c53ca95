#include "FileStore.h"

#include <algorithm>

#include "Damage.h"
#include "DatabaseDirectory.h"
#include "FED_LogMacros.h"
#include "FileContent.h"
#include "KeyCode.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|FileStore";

constexpr const char* kClosed = "it was closed";

}  // namespace

void FileStore::FailUnusable() const {
  const char* const reason =
      m_Problem != nullptr ? m_Problem : "this process is a fork of the one that opened it";
  FED_Failure::Throw("220300000041", kLocation, "The database %s cannot be used any more: %s.",
                     m_Directory.c_str(), reason);
}

FileStore::ContentPointer FileStore::Find(const std::string& key) const {
  return m_Contents.Find(key);
}

FileStore::ContentPointer FileStore::Find(const FED_DataDescriptor& descriptor) const {
  return Find(EncodeKey(descriptor));
}

FileStore::ContentPointer FileStore::Add(const FED_DataDescriptor& descriptor,
                                         const std::string& format, std::int32_t properties) {
  RequireUsable();
  BlockRow row;
  row.key = EncodeKey(descriptor);
  row.format = format;
  row.properties = properties;
  const auto isSame = [&](const BlockRow& unknown) { return unknown.key == row.key; };
  if (std::any_of(m_Unknown.begin(), m_Unknown.end(), isSame)) {
    FED_Failure::Throw("220300000042", kLocation,
                       "Block %s is stored in %s in a form that this program does not know. Choose "
                       "another key, or use the program that wrote it.",
                       descriptor.ToString().c_str(), m_Directory.c_str());
  }
  if (m_Contents.Find(row.key) != nullptr) {
    FED_Failure::Throw("220300000045", kLocation,
                       "Block %s cannot be told from one that is stored in %s. Use texts without a "
                       "character 0 in keys.",
                       descriptor.ToString().c_str(), m_Directory.c_str());
  }
  const auto content = std::make_shared<FileContent>(*this, row, false);
  content->Open();
  m_Contents.Insert(content);
  try {
    content->BeginChange();
  } catch (...) {
    m_Contents.Erase(row.key);
    throw;
  }
  ++m_BlockChanges;
  return content;
}

void FileStore::Delete(const FED_DataDescriptor& descriptor) {
  RequireUsable();
  const std::string key = EncodeKey(descriptor);
  const ContentPointer content = Find(key);
  if (content == nullptr) return;
  GetSpace();
  try {
    content->Open();
  } catch (const Damage&) {  // then its space is lost until the next opening
  }
  if (content->IsStored()) m_Deleted.push_back(key);
  if (content->IsChanged()) {
    m_Changed[content->placeInChanges] = m_Changed.back();
    m_Changed[content->placeInChanges]->placeInChanges = content->placeInChanges;
    m_Changed.pop_back();
  }
  m_Contents.Erase(key);
  content->Discard();
  ++m_BlockChanges;
}

void FileStore::NoteChange(FileContent& content) {
  if (!IsWritable()) {
    FED_DataDescriptor descriptor;
    DecodeKey(content.GetRow().key, descriptor);
    FED_Failure::Throw("220300000043", kLocation,
                       "Block %s cannot be changed: the database %s is open for reading only.",
                       descriptor.ToString().c_str(), m_Directory.c_str());
  }
  GetSpace();
  content.placeInChanges = m_Changed.size();
  m_Changed.push_back(&content);
}

Extent FileStore::StoreExtent(const void* data, std::size_t size) {
  PayloadSpace& space = GetSpace();
  const std::uint64_t offset = space.Allocate(size);
  try {
    return m_Payload->WriteAt(offset, data, size);
  } catch (...) {
    space.Release({offset, size, 0}, 0);
    throw;
  }
}

std::vector<FileStore::ContentPointer> FileStore::ListContents() const {
  std::vector<ContentPointer> contents;
  contents.reserve(m_Contents.GetCount());
  m_Contents.ForEach([&](const ContentPointer& content) { contents.push_back(content); });
  return contents;
}

void FileStore::ReleaseExtent(const Extent& extent, std::uint64_t birth) noexcept {
  if (m_Space != nullptr) m_Space->Release(extent, birth);
}

// What the last commit uses follows from its rows alone, as long as nothing has changed.
PayloadSpace& FileStore::GetSpace() {
  if (m_Space != nullptr) return *m_Space;
  std::vector<PayloadSpace::Range> used;
  const auto use = [&](const std::string& packed) {
    std::vector<StoredChunk> chunks;
    UnpackChunks(packed, chunks);
    for (const StoredChunk& chunk : chunks) {
      used.emplace_back(chunk.extent.offset, chunk.extent.length);
    }
  };
  m_Contents.ForEach([&](const ContentPointer& content) { use(content->GetRow().chunks); });
  for (const BlockRow& row : m_Unknown) use(row.chunks);
  for (const IdMapRow& row : m_IdMaps) use(row.chunks);
  std::sort(used.begin(), used.end());
  std::uint64_t end = Payload::kHeaderSize;
  for (const auto& [offset, length] : used) {
    if (offset < end || offset + length < offset) {
      throw Damage("220300000044",
                   "The catalogue of the database " + m_Directory +
                       " is damaged: two of its blocks claim the same bytes. Salvage it.",
                   kLocation);
    }
    end = offset + length;
  }
  m_Space = std::make_unique<PayloadSpace>(
      Payload::kHeaderSize, used, std::max(end, m_State.payloadLength), m_State.generation);
  Reclaim();
  return *m_Space;
}

// Where readers cannot be asked for, nothing is reused.
void FileStore::Reclaim() {
  if (m_Space == nullptr || !m_Space->HoldsAny()) return;
  try {
    if (m_Lock->HasReadersStarting()) return;
    m_Space->Reclaim(m_Lock->GetReaderGenerations(m_Space->GetOldestHeld(), m_State.generation));
  } catch (const std::exception&) {
  }
}

CatalogueChanges FileStore::CollectChanges(Changes& others) {
  CatalogueChanges changes;
  changes.clears = m_Clears;
  changes.deleted = m_Deleted;
  m_Rows.clear();
  m_Rows.reserve(m_Changed.size());
  for (FileContent* content : m_Changed) m_Rows.push_back(content->Flush());
  for (const BlockRow& row : m_Rows) changes.written.push_back(&row);
  changes.replacesAliases = others.replacesAliases;
  changes.aliases = std::move(others.aliases);
  changes.idMaps = std::move(others.idMaps);
  changes.state = m_State;
  changes.state.generation = m_LastAttempt + 1;
  changes.state.payloadLength = GetSpace().GetEnd();
  return changes;
}

void FileStore::Commit(Changes others) {
  RequireUsable();
  if (!HasChanges() && others.IsEmpty()) return;
  Reclaim();
  const CatalogueChanges changes = CollectChanges(others);
  Sync(*m_Payload);
  CommitCatalogue(changes);
  Committed(changes.state);
}

void FileStore::Sync(Payload& payload) {
  payload.Flush();  // may fail for want of space, and be tried again
  try {
    payload.Sync();
  } catch (...) {
    m_Problem = kSyncFailed;
    throw;
  }
}

void FileStore::CommitCatalogue(const CatalogueChanges& changes) {
  m_LastAttempt = changes.state.generation;
  try {
    m_Catalogue->Commit(changes);
  } catch (...) {
    if (m_Space != nullptr) m_Space->CommitFailed();
    if (m_Catalogue->HasSyncFailed()) m_Problem = kSyncFailed;
    throw;
  }
}

void FileStore::Committed(const CatalogueState& state) noexcept {
  m_State.generation = state.generation;
  m_State.payloadLength = state.payloadLength;
  for (std::size_t i = 0; i < m_Changed.size(); ++i) {
    m_Changed[i]->Committed(std::move(m_Rows[i]), state.generation);
  }
  m_Rows = {};
  m_Space->Committed(state.generation);
  m_Changed.clear();
  m_Deleted.clear();
  m_Clears = false;
  try {
    m_Payload->Acknowledge(state.generation);
  } catch (const std::exception&) {  // it is committed all the same, the next one will say so
  }
  Reclaim();
}

CatalogueState FileStore::ReadNewest() {
  RequireUsable();
  m_Lock->BeginRead();
  try {
    const CatalogueState state =
        DatabaseDirectory(m_Files, m_Directory).OpenCatalogueToRead()->ReadState();
    m_Lock->EndRead();
    return state;
  } catch (...) {
    m_Lock->EndRead();
    throw;
  }
}

void FileStore::Close() {
  if (!IsForked()) {
    ReleaseFiles();
  } else if (m_Catalogue != nullptr) {
    m_Catalogue->Abandon();
  }
  m_Catalogue.reset();
  m_Lock.reset();
  if (m_Problem == nullptr) m_Problem = kClosed;
}

// A writer leaves no unused end behind, and the number of its last commit durable.
void FileStore::ReleaseFiles() noexcept {
  if (m_Problem != nullptr || !IsWritable() || m_Payload == nullptr) return;
  try {
    Reclaim();
    const bool isFree = m_Space != nullptr && !m_Space->HoldsAny();
    if (isFree) m_Payload->TruncateTo(HasChanges() ? m_State.payloadLength : m_Space->GetEnd());
    m_Payload->Sync();
  } catch (const std::exception& failure) {
    FED_LogMacros::log_msg(FED_LogMacros::LOG_CONTINUED, __FILE__, __LINE__, kLocation,
                           "While the database %s was closed: %s", m_Directory.c_str(),
                           failure.what());
  }
}

FileStore::~FileStore() { Close(); }

}  // namespace qelta
