#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FED_Database.h"
#include "FED_IdMapsPool.h"
#include "QeltaStorageExport.h"

namespace qelta {
class ClosedAliases;
}

/// What the databases of all storage modules have in common: the checks before a block is created,
/// and that a block which a save closed is opened again, under all its names, when it is asked for.
class QELTA_STORAGE_EXPORT FED_StorageDatabase : public FED_Database {
 public:
  bool IsInitialized() const override { return m_IsOpen; }

  bool HasBlock(const FED_DataDescriptor& descriptor) const override;
  const FED_DataBlock& GetDataBlock(const FED_DataDescriptor& descriptor) const override;
  FED_DataBlock& GetDataBlock(const FED_DataDescriptor& descriptor) override;
  std::vector<FED_DataBlock*> GetDataBlocks(const FED_DataDescriptorPattern& pattern) override;
  /// Fails in a database that is open for reading only, as the next one does.
  void DeleteDataBlock(const FED_DataDescriptor& descriptor) override;
  void DeleteDataBlocks(const FED_DataDescriptorPattern& pattern) override;

  const FED_IdMapsPool& GetIdMapsPool() const override { return m_IdMaps; }
  FED_IdMapsPool& GetIdMapsPool() override { return m_IdMaps; }

 protected:
  FED_StorageDatabase();
  ~FED_StorageDatabase() override;
  FED_StorageDatabase(const FED_StorageDatabase& other);
  FED_StorageDatabase& operator=(const FED_StorageDatabase& other);

  /// To be called first in OpenDb: an object is initialised once.
  void BeginOpen(FED_DatabaseDefs::AccessMode mode, const FED_IdMapsPool& pool);
  /// The database serves blocks from now on.
  void FinishOpen() { m_IsOpen = true; }
  /// Destroys all blocks; the database serves none from now on.
  void FinishClose();

  FED_DatabaseDefs::AccessMode GetMode() const { return m_Mode; }

  /// Fails unless a block can be created under `descriptor`.
  void RequireCreatable(const FED_DataDescriptor& descriptor) const;
  void RequireWritable(const FED_DataDescriptor& descriptor) const;

  /// A new block object over the content that is stored under `primary`; null when there is none.
  virtual FED_DataBlock* MakeStoredBlock(const FED_DataDescriptor& primary) = 0;

  /// A number that has changed whenever blocks may have been closed; 0 while none was.
  virtual std::uint64_t GetClosings() const = 0;

  /// Whether a block may be stored whose descriptor is not in the block set.
  virtual bool MayHoldUnregistered() const { return true; }

 private:
  bool Reopen(const FED_DataDescriptor& descriptor);

  bool m_WasOpened = false;
  bool m_IsOpen = false;
  FED_DatabaseDefs::AccessMode m_Mode = FED_DatabaseDefs::READ_WRITE;
  FED_IdMapsPool m_IdMaps;
  std::unique_ptr<qelta::ClosedAliases> m_Aliases;  // about this object's own block set
};
