#include "StoredNames.h"

#include <utility>

#include "Damage.h"
#include "FED_LogMacros.h"
#include "FileContent.h"
#include "FileStore.h"
#include "KeyCode.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|StoredNames";

FED_DataDescriptor Decode(const std::string& key) {
  FED_DataDescriptor descriptor;
  if (DecodeKey(key, descriptor)) return descriptor;
  throw Damage("220300000071",
               "The catalogue is damaged: an alias has no valid key. Salvage the database.",
               kLocation);
}

}  // namespace

// A name that has a block of its own is no alias.
void StoredNames::Read(FileStore& store) {
  for (const AliasRow& row : store.GetAliases()) {
    if (store.Find(row.key) == nullptr) {
      if (store.IsUnknownName(row.key)) m_Unknown.push_back(row);
    } else if (store.Find(row.alias) == nullptr) {
      m_Saved.emplace(row.alias, row.key);
    }
  }
}

void StoredNames::RegisterAliases(FED_DataBlockSet& blocks) const {
  for (const auto& [alias, key] : m_Saved) {
    FED_DataDescriptor name = Decode(alias);
    blocks.StoreDataBlockAlias(Decode(key), name);
  }
}

void StoredNames::Load(FileStore& store, FED_DataBlockSet& blocks) {
  for (const auto& [descriptor, content] : store.TakeStored()) {
    blocks.StoreDataBlockInstance(descriptor, nullptr);
  }
  Read(store);
  RegisterAliases(blocks);
  m_StoreCount = blocks.GetStoreCount();
  m_BlockChanges = store.GetBlockChanges();
}

// What is no longer an alias gets a position of its own.
void StoredNames::Prepare(FileStore& store, const StoredNames& former, FED_DataBlockSet& blocks) {
  Read(store);
  for (const FED_DataDescriptor& name : blocks.FindBlocksInstances(FED_DataDescriptorPattern())) {
    const std::string key = EncodeKey(name);
    if (store.Find(key) == nullptr && m_Saved.count(key) == 0) m_Old.push_back(name);
  }
  FED_DataBlockSet both(blocks);
  for (const auto& [descriptor, content] : store.TakeStored()) {
    const bool isNew =
        both.FindPosition(descriptor) < 0 || former.m_Saved.count(EncodeKey(descriptor)) != 0;
    if (isNew) both.StoreDataBlockInstance(descriptor, nullptr);
  }
  RegisterAliases(both);
  blocks = both;
  m_StoreCount = blocks.GetStoreCount();
}

void StoredNames::ForgetOld(FED_DataBlockSet& blocks) {
  for (const FED_DataDescriptor& name : m_Old) blocks.ForgetDescriptor(name);
  m_Old.clear();
}

StoredNames::Aliases StoredNames::Find(FileStore& store, const FED_DataBlockSet& blocks) {
  std::vector<const FED_DataDescriptor*> names;
  blocks.GetAliases(names);
  std::map<int, std::vector<std::string>> groups;
  std::map<int, std::string> primaries;
  for (const FED_DataDescriptor* name : names) {
    const int position = blocks.FindPosition(*name);
    std::string key = EncodeKey(*name);
    if (store.Find(key) != nullptr) {
      primaries[position] = std::move(key);
    } else {
      groups[position].push_back(std::move(key));
    }
  }
  Aliases aliases;
  for (const auto& [position, primary] : primaries) {
    for (const std::string& alias : groups[position]) {
      if (IsStorable(store, alias)) aliases.emplace(alias, primary);
    }
  }
  return aliases;
}

bool StoredNames::IsStorable(FileStore& store, const std::string& alias) {
  if (!store.IsUnknownName(alias)) return true;
  if (!m_Reported.insert(alias).second) return false;
  FED_LogMacros::log_msg(FED_LogMacros::LOG_CONTINUED, __FILE__, __LINE__, kLocation,
                         "The name %s of a block is not stored in %s: a block that this program "
                         "does not know has it. Choose another name.",
                         Decode(alias).ToString().c_str(), store.GetDirectory().c_str());
  return false;
}

bool StoredNames::Collect(FileStore& store, const FED_DataBlockSet& blocks,
                          std::vector<AliasRow>& aliases) {
  aliases.clear();
  m_Collected.reset();
  if (m_StoreCount == blocks.GetStoreCount() && m_BlockChanges == store.GetBlockChanges()) {
    return false;
  }
  m_Collected = Find(store, blocks);
  if (m_Collected == m_Saved) return false;
  aliases = m_Unknown;
  for (const auto& [alias, key] : *m_Collected) aliases.push_back({alias, key});
  return true;
}

void StoredNames::Committed(const FED_DataBlockSet& blocks, const FileStore& store) {
  if (m_Collected) m_Saved.swap(*m_Collected);
  m_Collected.reset();
  m_StoreCount = blocks.GetStoreCount();
  m_BlockChanges = store.GetBlockChanges();
}

}  // namespace qelta
