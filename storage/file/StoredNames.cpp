#include "StoredNames.h"

#include <utility>

#include "Damage.h"
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

void StoredNames::Load(FileStore& store, FED_DataBlockSet& blocks) {
  for (const auto& [descriptor, content] : store.TakeStored()) {
    blocks.StoreDataBlockInstance(descriptor, nullptr);
  }
  for (const AliasRow& row : store.GetAliases()) {
    if (store.Find(row.key) != nullptr) m_Saved.emplace(row.alias, row.key);
  }
  RegisterAliases(m_Saved, blocks);
  m_StoreCount = blocks.GetStoreCount();
  m_BlockChanges = store.GetBlockChanges();
}

void StoredNames::RegisterAliases(const Aliases& aliases, FED_DataBlockSet& blocks) {
  for (const auto& [alias, key] : aliases) {
    FED_DataDescriptor name = Decode(alias);
    blocks.StoreDataBlockAlias(Decode(key), name);
  }
}

void StoredNames::Replace(FileStore& store, const StoredNames& former, FED_DataBlockSet& blocks) {
  const auto stored = store.TakeStored();
  for (const AliasRow& row : store.GetAliases()) {
    if (store.Find(row.key) != nullptr) m_Saved.emplace(row.alias, row.key);
  }
  Aliases added;
  for (const auto& alias : m_Saved) {
    const auto known = former.m_Saved.find(alias.first);
    if (known == former.m_Saved.end() || known->second != alias.second) added.insert(alias);
  }
  for (const FED_DataDescriptor& name : blocks.FindBlocksInstances(FED_DataDescriptorPattern())) {
    const std::string key = EncodeKey(name);
    const auto alias = m_Saved.find(key);
    const bool isAlias = alias != m_Saved.end() && added.count(key) == 0;
    const bool isBlock = store.Find(key) != nullptr && former.m_Saved.count(key) == 0;
    if (!isAlias && !isBlock) blocks.ForgetDescriptor(name);
  }
  for (const auto& [descriptor, content] : stored) {
    if (blocks.FindPosition(descriptor) < 0) blocks.StoreDataBlockInstance(descriptor, nullptr);
  }
  RegisterAliases(m_Saved, blocks);
  m_StoreCount = blocks.GetStoreCount();
}

StoredNames::Aliases StoredNames::Find(const FileStore& store, const FED_DataBlockSet& blocks) {
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
    for (const std::string& alias : groups[position]) aliases.emplace(alias, primary);
  }
  return aliases;
}

bool StoredNames::Collect(const FileStore& store, const FED_DataBlockSet& blocks,
                          std::vector<AliasRow>& aliases) {
  aliases.clear();
  m_Collected = m_Saved;
  if (m_StoreCount == blocks.GetStoreCount() && m_BlockChanges == store.GetBlockChanges()) {
    return false;
  }
  m_Collected = Find(store, blocks);
  if (m_Collected == m_Saved) return false;
  for (const auto& [alias, key] : m_Collected) aliases.push_back({alias, key});
  return true;
}

void StoredNames::Committed(const FED_DataBlockSet& blocks, const FileStore& store) {
  m_Saved.swap(m_Collected);
  m_StoreCount = blocks.GetStoreCount();
  m_BlockChanges = store.GetBlockChanges();
}

}  // namespace qelta
