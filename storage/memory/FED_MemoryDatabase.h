#pragma once

#include <memory>
#include <string>
#include <vector>

#include "FED_Database.h"
#include "FED_IdMapsPool.h"
#include "QeltaStorageExport.h"

namespace qelta {
class ClosedAliases;
struct MemoryStore;
}  // namespace qelta

/// A database in memory; its content goes with `CloseDb` or with the last copy of it.
///
/// Default-constructed, then `InitDb` once; name and cache size mean nothing here, and a database
/// opened `READ_ONLY` stays empty. A copy shares everything, content and open blocks.
class QELTA_STORAGE_EXPORT FED_MemoryDatabase : public FED_Database {
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
  bool IsInitialized() const override { return m_Store != nullptr; }

  FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor, int properties,
                                 std::int64_t recordCount, const std::string& format) override;
  FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor,
                                 std::size_t recordCount) override;

  // A block that SaveData closed is opened again when it is asked for.

  bool HasBlock(const FED_DataDescriptor& descriptor) const override;
  const FED_DataBlock& GetDataBlock(const FED_DataDescriptor& descriptor) const override;
  FED_DataBlock& GetDataBlock(const FED_DataDescriptor& descriptor) override;
  std::vector<FED_DataBlock*> GetDataBlocks(const FED_DataDescriptorPattern& pattern) override;
  void DeleteDataBlock(const FED_DataDescriptor& descriptor) override;
  void DeleteDataBlocks(const FED_DataDescriptorPattern& pattern) override;

  const FED_IdMapsPool& GetIdMapsPool() const override { return m_IdMaps; }
  FED_IdMapsPool& GetIdMapsPool() override { return m_IdMaps; }

 private:
  void RequireCreatable(const FED_DataDescriptor& descriptor) const;
  template <class... Format>
  FED_DataBlock& Create(const FED_DataDescriptor& descriptor, int properties,
                        const Format&... format);
  bool Reopen(const FED_DataDescriptor& descriptor);
  void OpenBlock(const FED_DataDescriptor& primary);

  bool m_WasOpened = false;
  FED_DatabaseDefs::AccessMode m_Mode = FED_DatabaseDefs::READ_WRITE;
  FED_IdMapsPool m_IdMaps;
  std::shared_ptr<qelta::MemoryStore> m_Store;
  std::unique_ptr<qelta::ClosedAliases> m_Aliases;  // about this object's own block set
};
