#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "FED_DataBlockSet.h"

namespace qelta {

class FileStore;

/// Keeps the descriptors in a block set and the blocks and aliases of a store in step.
class StoredNames {
 public:
  /// Registers all blocks, closed, and their aliases.
  void Load(FileStore& store, FED_DataBlockSet& blocks);

  /// The same for a store that was opened anew, over what `former` registered; all blocks are
  /// closed. Descriptors that are still right stay registered with their position.
  void Replace(FileStore& store, const StoredNames& former, FED_DataBlockSet& blocks);

  /// Whether the aliases in the set differ from the stored ones; if so, `aliases` are those of
  /// today. Costs a pass over all descriptors if any was registered or deleted.
  bool Collect(const FileStore& store, const FED_DataBlockSet& blocks,
               std::vector<AliasRow>& aliases);

  /// What was collected last is part of a commit.
  void Committed(const FED_DataBlockSet& blocks, const FileStore& store);

 private:
  using Aliases = std::map<std::string, std::string>;  // from alias to block, by key

  static Aliases Find(const FileStore& store, const FED_DataBlockSet& blocks);
  static void RegisterAliases(const Aliases& aliases, FED_DataBlockSet& blocks);

  Aliases m_Saved;
  Aliases m_Collected;
  std::uint64_t m_StoreCount = 0;
  std::uint64_t m_BlockChanges = 0;
};

}  // namespace qelta
