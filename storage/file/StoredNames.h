#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "FED_DataBlockSet.h"

namespace qelta {

class FileStore;

/// Keeps the descriptors in a block set and the blocks and aliases of a store in step. Aliases of
/// blocks that the store leaves alone are left alone with them.
class StoredNames {
 public:
  /// Registers all blocks, closed, and their aliases.
  void Load(FileStore& store, FED_DataBlockSet& blocks);

  /// Prepares for a store that was opened anew, over what `former` registered: registers what is
  /// new in it, and nothing when it fails. Descriptors that are still right keep their position.
  void Prepare(FileStore& store, const StoredNames& former, FED_DataBlockSet& blocks);
  /// Forgets what is no longer there; all blocks are closed. Never fails.
  void ForgetOld(FED_DataBlockSet& blocks);

  /// Whether the aliases in the set differ from the stored ones; if so, `aliases` are those of
  /// today. Costs a pass over all descriptors if any was registered or deleted.
  bool Collect(FileStore& store, const FED_DataBlockSet& blocks, std::vector<AliasRow>& aliases);

  /// What was collected last is part of a commit.
  void Committed(const FED_DataBlockSet& blocks, const FileStore& store);

 private:
  using Aliases = std::map<std::string, std::string>;  // from alias to block, by key

  void Read(FileStore& store);
  Aliases Find(FileStore& store, const FED_DataBlockSet& blocks);
  bool IsStorable(FileStore& store, const std::string& alias);
  void RegisterAliases(FED_DataBlockSet& blocks) const;

  Aliases m_Saved;
  std::vector<AliasRow> m_Unknown;  // of blocks that are left alone
  std::vector<FED_DataDescriptor> m_Old;
  std::set<std::string> m_Reported;    // aliases that cannot be stored
  std::optional<Aliases> m_Collected;  // unless nothing was registered or deleted
  std::uint64_t m_StoreCount = 0;
  std::uint64_t m_BlockChanges = 0;
};

}  // namespace qelta
