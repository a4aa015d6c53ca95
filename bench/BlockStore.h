#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace qelta::bench {

/// The key of a block as a solver counts: iterations, kinds of results, load cases.
struct BlockKey {
  std::int32_t iteration;
  std::int32_t onf;
  std::int32_t loadcase;

  /// One number, ascending in the order of the fields.
  std::uint64_t Packed() const {
    return static_cast<std::uint64_t>(iteration) << 32 | static_cast<std::uint64_t>(onf) << 16 |
           static_cast<std::uint64_t>(loadcase);
  }
};

/// What all stores that are compared can do: blocks of bytes under keys, kept in files, or instead
/// one table of records. Opened by construction, closed by destruction; failures are exceptions.
class BlockStore {
 public:
  enum class Mode { Create, Read, Update };

  static constexpr std::size_t kRecordBytes = 100;

  BlockStore() = default;
  virtual ~BlockStore() = default;
  BlockStore(const BlockStore&) = delete;
  BlockStore& operator=(const BlockStore&) = delete;

  /// Keys come in ascending order.
  virtual void Add(const BlockKey& key, const void* bytes, std::size_t size) = 0;
  /// The size is that of the block as it stands.
  virtual void Replace(const BlockKey& key, const void* bytes, std::size_t size) = 0;
  /// Returns when all of the above is durable.
  virtual void Commit() = 0;

  /// Visits all keys; the sum of their iterations.
  virtual std::uint64_t List() = 0;
  virtual void Read(const BlockKey& key, void* bytes, std::size_t size) = 0;

  // Here a record is a block of its own.
  virtual void AddTable(const void* records, std::size_t count) {
    const char* const first = static_cast<const char*>(records);
    for (std::size_t i = 0; i < count; ++i) {
      Add(KeyOfRecord(i), first + i * kRecordBytes, kRecordBytes);
    }
  }
  virtual void ReadRecord(std::size_t index, void* record) {
    Read(KeyOfRecord(index), record, kRecordBytes);
  }

 private:
  static BlockKey KeyOfRecord(std::size_t index) {
    return {static_cast<std::int32_t>(index), 0, 0};
  }
};

/// A way to keep blocks, and how to open it. The path is a file or folder in a folder of its own.
struct StoreKind {
  std::string name;
  std::unique_ptr<BlockStore> (*open)(const std::filesystem::path& path, BlockStore::Mode mode);
};

}  // namespace qelta::bench
