#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "BlockPositions.h"
#include "FED_DataBlock.h"
#include "FED_DataDescriptor.h"
#include "FED_DataDescriptorPattern.h"
#include "QeltaExport.h"

/// The registry of the blocks that one database has open.
///
/// A block enters through `StoreDataBlockInstance` and belongs to the set from then on; the set
/// destroys it when it is deleted, saved or cleared. Further descriptors (aliases) may lead to the
/// same block. Every block has a position, which is never reused except after `Clear`; a deleted
/// block leaves its position empty, and descriptors that still lead there find no block.
///
/// Descriptors remember their position, or that they were found absent until something new is
/// stored, so a repeated lookup with the same object costs one array access. A remembered position
/// means something to the set that wrote it only: after `Clear`, and for another set, use a
/// `Duplicate()`. A first lookup costs a logarithmic search.
///
/// A copied set shares the blocks; each is destroyed once, by the last set that holds it. No
/// operation locks, and even const lookups write into the descriptor.
class QELTA_EXPORT FED_DataBlockSet {
 public:
  FED_DataBlockSet();
  FED_DataBlockSet(const FED_DataBlockSet& other);
  FED_DataBlockSet& operator=(const FED_DataBlockSet& other);
  /// Clears.
  virtual ~FED_DataBlockSet();

  /// Registers `block` under `descriptor` and takes ownership, also when registering fails for want
  /// of memory (the block is then destroyed). A descriptor that is registered already leads to the
  /// new block from then on; the former one stays owned until the set is saved or cleared. Without
  /// a block (null) the descriptor is registered as one whose block is closed.
  void StoreDataBlockInstance(const FED_DataDescriptor& descriptor, FED_DataBlock* block);

  /// Makes `alias` lead to the block of `existing`, which must be registered in this set.
  void StoreDataBlockAlias(const FED_DataDescriptor& existing, FED_DataDescriptor& alias);

  /// Gives the closed block of `descriptor` back its place, so that all its names lead to `block`;
  /// registers a descriptor that is not. Takes ownership as above. The block must be closed.
  void ReopenDataBlockInstance(const FED_DataDescriptor& descriptor, FED_DataBlock* block);

  /// Forgets a descriptor whose block is closed; does nothing to others. Its position stays.
  void ForgetDescriptor(const FED_DataDescriptor& descriptor);

  /// The block of `descriptor`; valid until it is deleted. Fails when there is none.
  FED_DataBlock& GetDataBlockInstance(const FED_DataDescriptor& descriptor) const;

  bool HasBlockInstance(const FED_DataDescriptor& descriptor) const;

  /// The registered descriptors that the pattern selects, fed in ascending order; aliases, and
  /// descriptors whose block is gone, count like any other.
  std::vector<FED_DataDescriptor> FindBlocksInstances(
      const FED_DataDescriptorPattern& pattern) const;

  /// The block of each selected descriptor, so a block may be listed more than once. Fails when a
  /// selected descriptor has no block.
  std::vector<FED_DataBlock*> GetDataBlocksInstances(
      const FED_DataDescriptorPattern& pattern) const;

  /// Deletes the block of `descriptor` and forgets the descriptor. Descriptors that share the
  /// block stay registered and lead to no block. Does nothing when there is no block.
  void DeleteDataBlockInstance(const FED_DataDescriptor& descriptor);

  /// Deletes the block of each selected descriptor and logs their number.
  void DeleteDataBlocksInstances(const FED_DataDescriptorPattern& pattern);

  /// Appends the stored keys that share a position with another key: grouped by position in
  /// ascending order, in key order within a group, whether the block is there or not. They stay
  /// valid until their entry is erased or the set is cleared, assigned or destroyed.
  void GetAliases(std::vector<const FED_DataDescriptor*>& out) const;

  /// The position that `descriptor` is registered with, whether its block is there or not; -1 when
  /// it is not registered. Always searches.
  int FindPosition(const FED_DataDescriptor& descriptor) const;

  /// Has grown whenever a descriptor was registered or a block reopened; 0 after Clear.
  std::uint64_t GetStoreCount() const { return m_StoreCount; }

  /// Destroys all blocks without flushing them and forgets all descriptors.
  void Clear();

  /// Asks every block to flush, once for each of its descriptors.
  void FlushToDisk() const;

 private:
  friend class FED_Database;

  using BlockPointer = std::shared_ptr<FED_DataBlock>;

  /// Flushes and destroys every block; the descriptors stay registered.
  void SaveData();
  bool IsValidDatablockPos(int position) const;

  static BlockPointer Own(FED_DataBlock* block);
  FED_DataBlock& BlockAt(int position) const;
  void Register(const FED_DataDescriptor& descriptor, int position);

  std::vector<BlockPointer> m_DataBlocks;
  qelta::BlockPositions m_BlockPositions;
  std::uint64_t m_StoreCount = 0;
};
