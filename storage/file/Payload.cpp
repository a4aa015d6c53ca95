#include "Payload.h"

#include <xxhash.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "Damage.h"
#include "FED_Message.h"
#include "LittleEndian.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|Payload";

constexpr char kMagic[] = "QELTAPAY";
constexpr std::size_t kMagicSize = 8;
constexpr std::uint32_t kVersion = 1;

// The fixed part of the header: magic, version, uuid, checksum. Slots: generation, checksum.
constexpr std::size_t kVersionAt = 8;
constexpr std::size_t kUuidAt = 16;
constexpr std::size_t kFixedSize = 32;
constexpr std::size_t kSlotSize = 16;
constexpr std::uint64_t kSlotAt[] = {4096, 8192};

constexpr std::size_t kGather = std::size_t{1} << 20;
constexpr std::uint64_t kHint = std::uint64_t{8} << 20;
constexpr std::size_t kSmall = std::size_t{1} << 16;

using Header = std::array<unsigned char, kFixedSize + 8>;

Header MakeHeader(const Uuid& uuid) {
  Header header{};
  std::memcpy(header.data(), kMagic, kMagicSize);
  PutNumber(&header[kVersionAt], kVersion, 4);
  std::copy(uuid.begin(), uuid.end(), header.begin() + kUuidAt);
  PutNumber(&header[kFixedSize], XXH3_64bits(header.data(), kFixedSize), 8);
  return header;
}

enum class SlotState { INTACT, UNUSED, BAD };

SlotState ReadSlot(File& file, std::uint64_t place, std::uint64_t& generation) {
  unsigned char slot[kSlotSize];
  if (file.ReadAt(place, slot, kSlotSize) < kSlotSize) return SlotState::BAD;
  generation = GetNumber(slot, 8);
  const std::uint64_t checksum = GetNumber(slot + 8, 8);
  if (checksum == XXH3_64bits(slot, 8)) return SlotState::INTACT;
  return generation == 0 && checksum == 0 ? SlotState::UNUSED : SlotState::BAD;
}

std::uint64_t ReadSlots(File& file) {
  std::uint64_t newest = 0;
  for (const std::uint64_t place : kSlotAt) {
    std::uint64_t generation = 0;
    if (ReadSlot(file, place, generation) != SlotState::INTACT) continue;
    newest = std::max(newest, generation);
  }
  return newest;
}

}  // namespace

void Payload::Create(FileSystem& files, const std::string& path, const Uuid& uuid) {
  const auto file = files.Open(path, OpenMode::CREATE);
  file->Truncate(0);
  std::vector<unsigned char> bytes(kHeaderSize);
  const Header header = MakeHeader(uuid);
  std::copy(header.begin(), header.end(), bytes.begin());
  file->WriteAt(0, bytes.data(), bytes.size());
  file->Sync();
}

std::uint64_t Payload::ReadAcknowledged(FileSystem& files, const std::string& path) {
  if (files.GetKind(path) != PathKind::FILE) return 0;
  return ReadSlots(*files.Open(path, OpenMode::READ));
}

int Payload::CountBadSlots(File& file) {
  const auto isBad = [&](std::uint64_t place) {
    std::uint64_t generation = 0;
    return ReadSlot(file, place, generation) == SlotState::BAD;
  };
  return static_cast<int>(std::count_if(std::begin(kSlotAt), std::end(kSlotAt), isBad));
}

Payload::Payload(FileSystem& files, const std::string& path, const Uuid& uuid, bool isWritable)
    : m_Path(path) {
  if (files.GetKind(path) != PathKind::FILE) {
    throw Damage("220300000001",
                 FED_MESSAGE("The database is damaged: its file %s is missing. Restore it from a "
                             "backup.",
                             path.c_str()),
                 kLocation);
  }
  m_File = files.Open(path, isWritable ? OpenMode::READ_WRITE : OpenMode::READ);
  Header header{};
  const std::size_t read = m_File->ReadAt(0, header.data(), header.size());
  const Header expected = MakeHeader(uuid);
  if (read == header.size() && header == expected) return;
  if (read == header.size() && std::memcmp(header.data(), kMagic, kMagicSize) == 0 &&
      GetNumber(&header[kFixedSize], 8) == XXH3_64bits(header.data(), kFixedSize)) {
    const bool isNewer = GetNumber(&header[kVersionAt], 4) > kVersion;
    FED_Failure::Throw("220300000002", kLocation,
                       isNewer ? "%s was written by a newer version of this library; update it."
                               : "%s belongs to another database than the catalogue beside it. "
                                 "Restore both from the same backup.",
                       path.c_str());
  }
  throw Damage("220300000003",
               FED_MESSAGE("The database is damaged: %s has no valid header. Salvage what is "
                           "intact, or restore a backup.",
                           path.c_str()),
               kLocation);
}

std::uint64_t Payload::ReadAcknowledged() { return ReadSlots(*m_File); }

bool Payload::Touches(std::uint64_t offset, std::size_t size) const {
  return !m_Gathered.empty() && offset < m_GatheredAt + m_Gathered.size() &&
         m_GatheredAt < offset + size;
}

Extent Payload::WriteAt(std::uint64_t offset, const void* data, std::size_t size) {
  const bool follows = !m_Gathered.empty() && offset == m_GatheredAt + m_Gathered.size();
  const bool isGathered = size <= kSmall;
  if ((isGathered && !follows) || m_Gathered.size() + size > kGather || Touches(offset, size)) {
    Flush();
  }
  if (isGathered) {
    const auto* const bytes = static_cast<const unsigned char*>(data);
    m_Gathered.insert(m_Gathered.end(), bytes, bytes + size);
    m_GatheredAt = offset + size - m_Gathered.size();
  } else {
    WriteNow(offset, data, size);
  }
  m_NeedsSync = true;
  return {offset, size, XXH3_64bits(data, size)};
}

// The disk works while the next bytes are being prepared.
void Payload::WriteNow(std::uint64_t offset, const void* data, std::size_t size) {
  m_File->WriteAt(offset, data, size);
  if (offset != m_WrittenTo) m_WrittenFrom = offset;
  m_WrittenTo = offset + size;
  if (m_WrittenTo - m_WrittenFrom < kHint) return;
  m_File->StartSync(m_WrittenFrom, m_WrittenTo - m_WrittenFrom);
  m_WrittenFrom = m_WrittenTo;
}

const char* Payload::ReadFrom(File& file, const Extent& extent, void* data) {
  const auto size = static_cast<std::size_t>(extent.length);
  if (file.ReadAt(extent.offset, data, size) < size) return "the file ends before it";
  if (XXH3_64bits(data, size) != extent.checksum) return "its checksum is wrong";
  return nullptr;
}

const char* Payload::Read(const Extent& extent, void* data) {
  if (Touches(extent.offset, static_cast<std::size_t>(extent.length))) Flush();
  return ReadFrom(*m_File, extent, data);
}

void Payload::Flush() {
  if (m_Gathered.empty()) return;
  WriteNow(m_GatheredAt, m_Gathered.data(), m_Gathered.size());
  m_Gathered.clear();
}

void Payload::Sync() {
  Flush();
  if (!m_NeedsSync) return;
  m_File->Sync();
  m_NeedsSync = false;
}

void Payload::Acknowledge(std::uint64_t generation) {
  unsigned char slot[kSlotSize];
  PutNumber(slot, generation, 8);
  PutNumber(slot + 8, XXH3_64bits(slot, 8), 8);
  m_File->WriteAt(kSlotAt[generation % 2], slot, kSlotSize);
  m_NeedsSync = true;
}

void Payload::TruncateTo(std::uint64_t size) {
  if (m_File->GetSize() > size) m_File->Truncate(size);
}

}  // namespace qelta
