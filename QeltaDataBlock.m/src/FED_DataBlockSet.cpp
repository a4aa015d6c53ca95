#include "FED_DataBlockSet.h"

#include <algorithm>

#include "FED_Failure.h"
#include "FED_LogMacros.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaDataBlock|FED_DataBlockSet";

// Makes room for one more element, so that adding it cannot fail.
template <class T>
void ReserveOneMore(std::vector<T>& list) {
  if (list.size() == list.capacity()) list.reserve(2 * list.size() + 1);
}

}  // namespace

FED_DataBlockSet::FED_DataBlockSet() = default;

FED_DataBlockSet::FED_DataBlockSet(const FED_DataBlockSet& other) = default;

FED_DataBlockSet& FED_DataBlockSet::operator=(const FED_DataBlockSet& other) {
  if (this == &other) return *this;
  std::vector<BlockPointer> blocks(other.m_DataBlocks);
  qelta::BlockPositions positions(other.m_BlockPositions);
  Clear();
  m_DataBlocks = std::move(blocks);
  m_BlockPositions = std::move(positions);
  m_StoreCount = other.m_StoreCount;
  return *this;
}

FED_DataBlockSet::~FED_DataBlockSet() { Clear(); }

// The destructor of a block is open to this class alone, so the deleter is made here.
FED_DataBlockSet::BlockPointer FED_DataBlockSet::Own(FED_DataBlock* block) {
  if (block == nullptr) return nullptr;
  return BlockPointer(block, [](FED_DataBlock* owned) { delete owned; });
}

void FED_DataBlockSet::StoreDataBlockInstance(const FED_DataDescriptor& descriptor,
                                              FED_DataBlock* block) {
  BlockPointer owned = Own(block);
  ReserveOneMore(m_DataBlocks);
  Register(descriptor, static_cast<int>(m_DataBlocks.size()));
  m_DataBlocks.push_back(std::move(owned));
}

void FED_DataBlockSet::ReopenDataBlockInstance(const FED_DataDescriptor& descriptor,
                                               FED_DataBlock* block) {
  const int position = m_BlockPositions.Find(descriptor);
  if (position < 0) {
    StoreDataBlockInstance(descriptor, block);
    return;
  }
  m_DataBlocks[static_cast<std::size_t>(position)] = Own(block);
  descriptor.SetBlockID(position);
  ++m_StoreCount;  // descriptors that were found absent meanwhile look again
}

void FED_DataBlockSet::ForgetDescriptor(const FED_DataDescriptor& descriptor) {
  const int position = m_BlockPositions.Find(descriptor);
  if (position < 0 || IsValidDatablockPos(position)) return;
  const FED_DataDescriptor key(descriptor);
  m_BlockPositions.Erase(key);
}

void FED_DataBlockSet::StoreDataBlockAlias(const FED_DataDescriptor& existing,
                                           FED_DataDescriptor& alias) {
  const int position = existing.GetBlockID();
  Register(alias, position >= 0 ? position : m_BlockPositions.Find(existing));
}

void FED_DataBlockSet::Register(const FED_DataDescriptor& descriptor, int position) {
  FED_DataDescriptor key(descriptor);
  key.SetBlockID(position);
  // A key that was there before still carries its former position.
  m_BlockPositions.Set(key, position).SetBlockID(position);
  descriptor.SetBlockID(position);
  ++m_StoreCount;
}

bool FED_DataBlockSet::IsValidDatablockPos(int position) const {
  return 0 <= position && static_cast<std::size_t>(position) < m_DataBlocks.size() &&
         m_DataBlocks[static_cast<std::size_t>(position)] != nullptr;
}

FED_DataBlock& FED_DataBlockSet::BlockAt(int position) const {
  return *m_DataBlocks[static_cast<std::size_t>(position)];
}

bool FED_DataBlockSet::HasBlockInstance(const FED_DataDescriptor& descriptor) const {
  if (IsValidDatablockPos(descriptor.GetBlockID())) return true;
  if (descriptor.GetBlockID() == FED_DataDescriptor::kAbsent &&
      descriptor.m_MissStamp == m_StoreCount) {
    return false;
  }
  const int position = m_BlockPositions.Find(descriptor);
  const bool present = IsValidDatablockPos(position);
  descriptor.SetBlockID(present ? position : FED_DataDescriptor::kAbsent);
  if (!present) descriptor.m_MissStamp = m_StoreCount;
  return present;
}

FED_DataBlock& FED_DataBlockSet::GetDataBlockInstance(const FED_DataDescriptor& descriptor) const {
  const int cached = descriptor.GetBlockID();
  if (IsValidDatablockPos(cached)) return BlockAt(cached);
  if (cached >= 0) {
    FED_Failure::Throw("133455270312", kLocation,
                       "Table for descriptor:\n %s \n is not present in the database.",
                       descriptor.ToString().c_str());
  }
  const int position = m_BlockPositions.Find(descriptor);
  if (!IsValidDatablockPos(position)) {
    FED_Failure::Throw("133456270312", kLocation,
                       "Datablock for descriptor:\n %s \n is not present in the database.",
                       descriptor.ToString().c_str());
  }
  descriptor.SetBlockID(position);
  return BlockAt(position);
}

std::vector<FED_DataDescriptor> FED_DataBlockSet::FindBlocksInstances(
    const FED_DataDescriptorPattern& pattern) const {
  FED_DataDescriptorPattern::MatchStateData state;
  m_BlockPositions.ForEach(
      [&](const FED_DataDescriptor& key, std::int32_t) { pattern.Match(key, state); });
  std::vector<FED_DataDescriptor> matched;
  state.GetMatched(matched);
  return matched;
}

std::vector<FED_DataBlock*> FED_DataBlockSet::GetDataBlocksInstances(
    const FED_DataDescriptorPattern& pattern) const {
  std::vector<FED_DataBlock*> blocks;
  for (const FED_DataDescriptor& descriptor : FindBlocksInstances(pattern)) {
    blocks.push_back(&GetDataBlockInstance(descriptor));
  }
  return blocks;
}

void FED_DataBlockSet::DeleteDataBlockInstance(const FED_DataDescriptor& descriptor) {
  const int position = m_BlockPositions.Find(descriptor);
  if (!IsValidDatablockPos(position)) return;
  // The caller may name the descriptor inside the block, which goes with it.
  const FED_DataDescriptor key(descriptor);
  BlockAt(position).DeleteData();
  m_DataBlocks[static_cast<std::size_t>(position)].reset();
  m_BlockPositions.Erase(key);
}

void FED_DataBlockSet::DeleteDataBlocksInstances(const FED_DataDescriptorPattern& pattern) {
  const std::vector<FED_DataDescriptor> selected = FindBlocksInstances(pattern);
  FED_LogMacros::log_msg(FED_LogMacros::LOG_REPORT, __FILE__, __LINE__, kLocation,
                         "Descriptor pattern %s matched %Iu data blocks",
                         pattern.ToString().c_str(), static_cast<std::uint64_t>(selected.size()));
  for (const FED_DataDescriptor& descriptor : selected) DeleteDataBlockInstance(descriptor);
}

void FED_DataBlockSet::GetAliases(std::vector<const FED_DataDescriptor*>& out) const {
  using Entry = std::pair<std::int32_t, const FED_DataDescriptor*>;
  std::vector<Entry> entries;
  entries.reserve(m_BlockPositions.Size());
  m_BlockPositions.ForEach([&](const FED_DataDescriptor& key, std::int32_t position) {
    entries.emplace_back(position, &key);
  });
  std::stable_sort(entries.begin(), entries.end(),
                   [](const Entry& a, const Entry& b) { return a.first < b.first; });
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool sharesLeft = i > 0 && entries[i - 1].first == entries[i].first;
    const bool sharesRight = i + 1 < entries.size() && entries[i + 1].first == entries[i].first;
    if (sharesLeft || sharesRight) out.push_back(entries[i].second);
  }
}

int FED_DataBlockSet::FindPosition(const FED_DataDescriptor& descriptor) const {
  return m_BlockPositions.Find(descriptor);
}

void FED_DataBlockSet::Clear() {
  for (BlockPointer& block : m_DataBlocks) block.reset();
  m_DataBlocks.clear();
  m_BlockPositions.Clear();
  m_StoreCount = 0;
}

void FED_DataBlockSet::FlushToDisk() const {
  m_BlockPositions.ForEach([this](const FED_DataDescriptor&, std::int32_t position) {
    if (IsValidDatablockPos(position)) BlockAt(position).FlushToDisk();
  });
}

void FED_DataBlockSet::SaveData() {
  for (BlockPointer& block : m_DataBlocks) {
    if (block == nullptr) continue;
    block->FlushToDisk();
    block.reset();
  }
}
