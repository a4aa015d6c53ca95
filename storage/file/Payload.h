#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Extent.h"
#include "FileSystem.h"

namespace qelta {

using Uuid = std::array<unsigned char, 16>;

/// `payload-<n>.qd`: the content of the blocks, and two slots that take turns in recording which
/// commit was acknowledged last.
///
/// Small writes are gathered: what was written is in the file after Flush. When writing fails,
/// nothing that was accepted before is lost, and the next call tries again.
class Payload {
 public:
  static constexpr std::uint64_t kHeaderSize = 12288;

  /// Makes the file, which must not exist or be worthless, and syncs it.
  static void Create(FileSystem& files, const std::string& path, const Uuid& uuid);

  /// The commit that an intact slot names; 0 when no file or slot is there.
  static std::uint64_t ReadAcknowledged(FileSystem& files, const std::string& path);

  /// What is wrong with the bytes, for a message; null when they are read and intact.
  static const char* ReadFrom(File& file, const Extent& extent, void* data);

  /// How many of the slots hold something that no commit wrote.
  static int CountBadSlots(File& file);

  /// Fails when the file is absent, belongs to another database or has a newer format.
  Payload(FileSystem& files, const std::string& path, const Uuid& uuid, bool isWritable);

  const std::string& GetPath() const { return m_Path; }
  std::uint64_t ReadAcknowledged();

  /// The extent of `size` bytes written at `offset`.
  Extent WriteAt(std::uint64_t offset, const void* data, std::size_t size);

  /// As ReadFrom, for bytes that may not be in the file yet.
  const char* Read(const Extent& extent, void* data);

  void Flush();
  /// Flushes, and makes it durable.
  void Sync();
  /// Records a commit in the slot whose turn it is.
  void Acknowledge(std::uint64_t generation);
  void TruncateTo(std::uint64_t size);

 private:
  bool Touches(std::uint64_t offset, std::size_t size) const;
  void WriteNow(std::uint64_t offset, const void* data, std::size_t size);

  std::string m_Path;
  std::unique_ptr<File> m_File;
  std::uint64_t m_GatheredAt = 0;
  std::vector<unsigned char> m_Gathered;
  bool m_NeedsSync = false;
  std::uint64_t m_WrittenFrom = 0;  // what follows one another and was not yet hinted at
  std::uint64_t m_WrittenTo = 0;
};

}  // namespace qelta
