// Drops the strings and lists of blocks that no record refers to.

#include <cstring>

#include "BlockLayout.h"
#include "FileContent.h"
#include "FileSession.h"
#include "KeyCode.h"
#include "LittleEndian.h"
#include "Maintenance.h"

namespace qelta {
namespace {

// A handle in a record, as the program that wrote it has it.
std::uint64_t HandleAt(const unsigned char* field) {
  std::uint32_t handle = 0;
  std::memcpy(&handle, field, sizeof handle);
  return handle;
}

}  // namespace

std::vector<bool> FileContent::FindReferenced() {
  FED_DataDescriptor descriptor;
  DecodeKey(m_Row.key, descriptor);
  const std::vector<std::size_t> places = HandlePlaces(descriptor, m_Row.format);
  std::vector<bool> referenced(static_cast<std::size_t>(m_Handles) + 1);
  if (places.empty()) return referenced;
  const auto note = [&](const unsigned char* records, std::size_t, std::size_t count) {
    for (const unsigned char* record = records; count > 0; --count, record += m_RecordSize) {
      for (const std::size_t place : places) {
        const std::uint64_t handle = HandleAt(record + place);
        if (handle <= m_Handles) referenced[static_cast<std::size_t>(handle)] = true;
      }
    }
  };
  for (std::size_t next = NextPresent(0); next < m_Span; next = NextPresent(next)) {
    m_Store.BeginOperation();
    next += VisitRun(next, static_cast<std::size_t>(m_Span) - next, note);
  }
  return referenced;
}

bool FileContent::HasUnreferenced(const std::vector<bool>& referenced) {
  for (std::uint64_t i = 0; i < m_Handles; ++i) {
    if (referenced[static_cast<std::size_t>(i) + 1]) continue;
    unsigned char entry[kHandleEntry];
    StreamOf(Part::HANDLES).Read(i * kHandleEntry, entry, kHandleEntry);
    if (entry[kHandleEntry - 1] != 0) return true;
  }
  return false;
}

// Returns the bytes that were copied. Entries that are not written read as 0.
std::uint64_t FileContent::CopyReferenced(const std::vector<bool>& referenced, ChunkStream& handles,
                                          ChunkStream& contents) {
  std::vector<unsigned char> buffer(kChunkBytes);
  std::uint64_t end = 0;
  for (std::uint64_t i = 0; i < m_Handles; ++i) {
    if (!referenced[static_cast<std::size_t>(i) + 1]) continue;
    m_Store.RequireUsable();
    unsigned char entry[kHandleEntry];
    StreamOf(Part::HANDLES).Read(i * kHandleEntry, entry, kHandleEntry);
    if (entry[kHandleEntry - 1] == 0) continue;
    std::uint64_t from = GetNumber(entry, kWord);
    std::uint64_t bytes = GetNumber(entry + kWord, kWord - 1);
    if (from > m_ContentBytes || bytes > m_ContentBytes - from) {
      FailDamaged("a string or list lies outside of its chunks");
    }
    PutNumber(entry, end, kWord);
    handles.Write(i * kHandleEntry, entry, kHandleEntry);
    while (bytes > 0) {
      const std::uint64_t share = std::min<std::uint64_t>(bytes, buffer.size());
      StreamOf(Part::CONTENTS).Read(from, buffer.data(), share);
      contents.Write(end, buffer.data(), share);
      from += share;
      end += share;
      bytes -= share;
    }
  }
  return end;
}

bool FileContent::DropUnreferenced() {
  Open();
  if (m_Handles == 0) return false;
  const std::vector<bool> referenced = FindReferenced();
  if (!HasUnreferenced(referenced)) {
    m_HasNewContents = false;
    return false;
  }
  auto handles = std::make_unique<ChunkStream>(m_Store, m_Row.key, Part::HANDLES, kChunkBytes);
  auto contents = std::make_unique<ChunkStream>(m_Store, m_Row.key, Part::CONTENTS, kChunkBytes);
  std::uint64_t bytes = 0;
  try {
    bytes = CopyReferenced(referenced, *handles, *contents);
    BeginChange();
  } catch (...) {
    handles->Clear();
    contents->Clear();
    throw;
  }
  SlotOf(Part::HANDLES).swap(handles);
  SlotOf(Part::CONTENTS).swap(contents);
  m_ContentBytes = bytes;
  m_HasNewContents = false;
  if (handles != nullptr) handles->Clear();
  if (contents != nullptr) contents->Clear();
  return true;
}

void DropUnreferenced(FileStore& store) {
  for (const FileStore::ContentPointer& content : store.ListContents()) {
    if (content->GetRow().handles > 0) content->DropUnreferenced();
  }
  store.Commit({});
}

void DropUnreferenced(FileSession& session) noexcept {
  FileStore& store = session.GetStore();
  if (!store.IsWritable() || !store.IsUsable()) return;
  try {
    for (const FileStore::ContentPointer& content : store.ListContents()) {
      if (!content->HasNewContents()) continue;
      try {
        content->DropUnreferenced();
      } catch (const std::exception&) {  // a damaged block keeps what it has
      }
    }
    store.Commit({});
  } catch (const std::exception&) {
  }
}

}  // namespace qelta
