#pragma once

#include <memory>
#include <string>

#include "FED_StorageDatabase.h"

namespace qelta {
struct MemoryStore;
}

/// A database in memory; its content goes with `CloseDb` or with the last copy of it.
///
/// Default-constructed, then `InitDb` once; name and cache size mean nothing here, and a database
/// opened `READ_ONLY` stays empty. A copy shares content and open blocks; a block that one of them
/// creates or deletes later is there or gone for all, but patterns see a new one only in the
/// database that created it or was asked for it by its descriptor.
class QELTA_MEMORY_STORAGE_EXPORT FED_MemoryDatabase : public FED_StorageDatabase {
 public:
  FED_MemoryDatabase();
  ~FED_MemoryDatabase() override;
  FED_MemoryDatabase(const FED_MemoryDatabase& other);
  FED_MemoryDatabase& operator=(const FED_MemoryDatabase& other);

  /// Does nothing; here so that all storage modules are used alike.
  void Save() {}

  void OpenDb(FED_DatabaseDefs::AccessMode mode, std::uint64_t cacheSize, const std::wstring& name,
              const FED_IdMapsPool& pool) override;
  void CloseDb() override;

  FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor, int properties,
                                 std::int64_t recordCount, const std::string& format) override;
  FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor,
                                 std::size_t recordCount) override;

 protected:
  FED_DataBlock* MakeStoredBlock(const FED_DataDescriptor& primary) override;
  std::uint64_t GetClosings() const override;

 private:
  void ExpectForeignBlocks();
  /// `format` is null for a block of a catalogued kind.
  FED_DataBlock& Create(const FED_DataDescriptor& descriptor, int properties,
                        const std::string* format);

  std::shared_ptr<qelta::MemoryStore> m_Store;
};
