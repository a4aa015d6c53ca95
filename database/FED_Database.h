#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FED_DataBlock.h"
#include "FED_DataBlockSet.h"
#include "FED_DataDescriptor.h"
#include "FED_DataDescriptorPattern.h"
#include "FED_IdMapsPool.h"
#include "QeltaExport.h"

struct FED_DatabaseDefs {
  enum AccessMode : std::int32_t {
    READ_ONLY = 0,   ///< nothing is ever written
    READ_WRITE = 1,  ///< open, create when absent
    CREATE = 2       ///< start empty; whatever stood under the name is replaced
  };
};

/// A name for callers that need none of their own.
inline const std::wstring FED_DEFAULT_DATABASE_NAME = L"optimization_database";

/// A database of data blocks: fetches, finds, aliases and deletes the blocks that are open.
///
/// This class is abstract; a storage module derives from it and supplies everything that touches
/// storage. The order of the virtual operations is part of the interface, and everything here
/// calls them through the virtual table. README.md beside this file is the contract for storage
/// modules.
///
/// Lifecycle: construct the derived class, `InitDb`, work, `CloseDb` or destroy. Blocks belong to
/// the block set of the database and are valid until they are deleted or saved away. Destruction
/// does not flush. A copied database shares its open blocks. One thread at a time.
class QELTA_EXPORT FED_Database {
 public:
  FED_Database();
  FED_Database(const FED_Database& other);
  FED_Database& operator=(const FED_Database& other);
  virtual ~FED_Database();

  /// Opens or creates the storage; called by `InitDb` alone.
  virtual void OpenDb(FED_DatabaseDefs::AccessMode mode, std::uint64_t cacheSize,
                      const std::wstring& name, const FED_IdMapsPool& pool) = 0;

  /// Closes the storage; what was not saved is discarded.
  virtual void CloseDb() = 0;

  /// True once the database can serve blocks.
  virtual bool IsInitialized() const = 0;

  /// The block of `descriptor`, made by the fitting `CreateDataBlock` when there is none: the first
  /// form for a custom block, the second for a block of a catalogued kind.
  virtual FED_DataBlock& FetchDataBlock(const FED_DataDescriptor& descriptor, int properties,
                                        std::int64_t recordCount, const std::string& format);
  virtual FED_DataBlock& FetchDataBlock(const FED_DataDescriptor& descriptor,
                                        std::size_t recordCount);

  /// Makes a block that is not there yet and registers it. `recordCount` is a hint.
  virtual FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor, int properties,
                                         std::int64_t recordCount, const std::string& format) = 0;
  virtual FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor,
                                         std::size_t recordCount) = 0;

  virtual bool HasBlock(const FED_DataDescriptor& descriptor) const;

  /// The block of `descriptor`; fails when there is none.
  virtual const FED_DataBlock& GetDataBlock(const FED_DataDescriptor& descriptor) const;
  virtual FED_DataBlock& GetDataBlock(const FED_DataDescriptor& descriptor);

  /// The block of each descriptor that the pattern selects, once for each; fails when a selected
  /// descriptor has no block.
  virtual std::vector<FED_DataBlock*> GetDataBlocks(const FED_DataDescriptorPattern& pattern);

  /// Deletes the block of `descriptor`, if there is one; its aliases lead to no block afterwards.
  virtual void DeleteDataBlock(const FED_DataDescriptor& descriptor);

  /// Deletes the block of each descriptor that the pattern selects and logs their number.
  virtual void DeleteDataBlocks(const FED_DataDescriptorPattern& pattern);

  /// The descriptors, aliases included, that the pattern selects, fed in ascending order.
  virtual std::vector<FED_DataDescriptor> FindBlocks(
      const FED_DataDescriptorPattern& pattern) const;

  /// The id maps that belong to the blocks.
  virtual const FED_IdMapsPool& GetIdMapsPool() const = 0;
  virtual FED_IdMapsPool& GetIdMapsPool() = 0;

  /// Hands everything to `OpenDb`.
  void InitDb(const FED_IdMapsPool& pool, FED_DatabaseDefs::AccessMode mode,
              std::uint64_t cacheSize, const std::wstring& name);

  /// Makes `alias` a further name of the block of `existing`. False, and nothing changed, when the
  /// two are equal, `existing` has no block, `alias` has one, or either specifies no field.
  bool CreateDataBlockAlias(const FED_DataDescriptor& existing, FED_DataDescriptor& alias);

 protected:
  /// The cache size to use, in bytes: a positive whole number in the environment variable
  /// `vtm_cache_size`, else `requested`; rounded up to a multiple of 1024.
  static std::uint64_t GetCacheSize(std::uint64_t requested);

  /// Flushes and destroys every open block; their descriptors stay registered.
  void SaveData();

  /// A derived class clears it in its own destructor, before the members that its blocks use go.
  FED_DataBlockSet m_BlockSet;
};
