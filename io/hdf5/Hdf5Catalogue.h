#pragma once

#include <FED_DataDescriptor.h>
#include <FED_OnfMetaData.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Hdf5Handle.h"

namespace qelta {

/// What blocks a file has, and under which keys. Damage is a failure that names file and group.
class Hdf5Catalogue {
 public:
  struct Block {
    FED_DataDescriptor key;
    std::string name;  ///< of its group
    const FED_OnfMetaData* kind;
    std::uint64_t records;
  };

  /// A block under one or several of its keys, the first of which is to be its own.
  struct Choice {
    const Block* block;
    std::vector<std::size_t> keys;  ///< places in the list of keys that were chosen
  };

  explicit Hdf5Catalogue(const std::string& path);

  const std::string& GetPath() const { return m_Path; }

  /// The keys of all blocks, then the aliases.
  const std::vector<FED_DataDescriptor>& GetKeys() const { return m_Keys; }

  /// The blocks of some of these keys, in the order of their first key; fails when one is unknown.
  std::vector<Choice> Choose(const std::vector<FED_DataDescriptor>& keys) const;

  Hdf5Handle OpenIdMaps() const;
  Hdf5Handle OpenBlock(const Block& block) const;

  /// Runs `work`; the problems that it meets become failures that name the file and `place`.
  template <class Work>
  auto Locate(const std::string& place, Work work) const {
    try {
      return work();
    } catch (const Hdf5Problem& problem) {
      ThrowReadFailure(place, problem);
    }
  }

 private:
  [[noreturn]] void ThrowReadFailure(const std::string& place, const Hdf5Problem& problem) const;
  void AddBlock(const std::string& name);
  void AddAlias(hid_t aliases, const std::string& name);
  void AddKey(const FED_DataDescriptor& key, std::size_t block);

  std::string m_Path;
  Hdf5Handle m_File;
  Hdf5Handle m_Group;  // of the blocks
  std::vector<Block> m_Blocks;
  std::map<std::string, std::size_t> m_BlockNames;
  std::vector<FED_DataDescriptor> m_Keys;
  std::map<FED_DataDescriptor, std::size_t> m_KeyBlocks;
};

}  // namespace qelta
