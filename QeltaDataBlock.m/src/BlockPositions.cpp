#include "BlockPositions.h"

#include <algorithm>
#include <utility>

namespace qelta {

bool BlockPositions::Probe::IsEqual(const Entry& entry) const {
  return digest == entry.digest && (digest.IsWhole() || key.EqualTo(*entry.key));
}

bool BlockPositions::Probe::IsBefore(const Entry& entry) const {
  if (digest != entry.digest) return digest < entry.digest;
  return !digest.IsWhole() && key < *entry.key;
}

bool BlockPositions::Probe::IsBefore(const Leaf& leaf) const {
  return digest != leaf.first ? digest < leaf.first : IsBefore(*leaf.begin());
}

BlockPositions::BlockPositions(const BlockPositions& other) {
  other.ForEach([this](const auto& key, std::int32_t position) { Set(key, position); });
}

BlockPositions& BlockPositions::operator=(const BlockPositions& other) {
  return *this = BlockPositions(other);
}

std::int32_t BlockPositions::Find(const FED_DataDescriptor& key) const {
  const Probe probe(key);
  const Entry* const found = EntryAt(PlaceOf(probe), probe);
  return found == nullptr ? kNone : found->position;
}

const FED_DataDescriptor& BlockPositions::Set(const FED_DataDescriptor& key,
                                              std::int32_t position) {
  const Probe probe(key);
  const Place place = PlaceOf(probe);
  if (Entry* const found = EntryAt(place, probe)) {
    found->position = position;
    return *found->key;
  }
  // What needs memory comes first; from there on nothing fails.
  m_Keys.ReserveOne();
  const Place room = MakeRoom(place);
  FED_DataDescriptor* const stored = m_Keys.Take();
  *stored = key;
  Insert(room, {probe.digest, stored, position});
  return *stored;
}

void BlockPositions::Erase(const FED_DataDescriptor& key) {
  const Probe probe(key);
  const Place place = PlaceOf(probe);
  if (const Entry* const found = EntryAt(place, probe)) {
    m_Keys.GiveBack(found->key);
    Remove({place.leaf, place.entry - 1});
  }
}

void BlockPositions::Clear() { *this = BlockPositions(); }

BlockPositions::Place BlockPositions::PlaceOf(const Probe& probe) const {
  if (m_Leaves.empty()) return {0, 0};
  const Leaf& last = m_Leaves.back();
  // Keys that come in ascending order need no search.
  if (!probe.IsBefore(*(last.end() - 1))) return {m_Leaves.size() - 1, last.count};
  const auto isBefore = [](const Probe& sought, const auto& other) {
    return sought.IsBefore(other);
  };
  auto leaf = std::upper_bound(m_Leaves.begin(), m_Leaves.end(), probe, isBefore);
  if (leaf != m_Leaves.begin()) --leaf;
  const Entry* const behind = std::upper_bound(leaf->begin(), leaf->end(), probe, isBefore);
  return {static_cast<std::size_t>(leaf - m_Leaves.begin()),
          static_cast<std::size_t>(behind - leaf->begin())};
}

BlockPositions::Entry* BlockPositions::EntryAt(const Place& place, const Probe& probe) const {
  if (place.entry == 0) return nullptr;
  Entry* const entry = m_Leaves[place.leaf].begin() + place.entry - 1;
  return probe.IsEqual(*entry) ? entry : nullptr;
}

// Where the entry goes now, in a leaf with room for it.
BlockPositions::Place BlockPositions::MakeRoom(const Place& place) {
  if (m_Leaves.empty()) AddLeaf(0);
  if (m_Leaves[place.leaf].count < kLeafEntries) return place;
  AddLeaf(place.leaf + 1);
  // Keys come in ascending order most of the time; these should leave leaves well filled.
  const bool isBehind = place.entry == kLeafEntries;
  const std::size_t kept = isBehind ? kLeafEntries / 8 * 7 : kLeafEntries / 2;
  Leaf& full = m_Leaves[place.leaf];
  Leaf& added = m_Leaves[place.leaf + 1];
  std::copy(full.begin() + kept, full.end(), added.begin());
  added.first = added.begin()->digest;
  added.count = kLeafEntries - kept;
  full.count = kept;
  return place.entry <= kept ? place : Place{place.leaf + 1, place.entry - kept};
}

void BlockPositions::AddLeaf(std::size_t index) {
  m_LeafEntries.ReserveOne();
  const auto added = m_Leaves.insert(m_Leaves.begin() + static_cast<std::ptrdiff_t>(index), Leaf{});
  added->entries = m_LeafEntries.Take();
}

void BlockPositions::Insert(const Place& place, const Entry& entry) noexcept {
  Leaf& leaf = m_Leaves[place.leaf];
  Entry* const at = leaf.begin() + place.entry;
  std::copy_backward(at, leaf.end(), leaf.end() + 1);
  *at = entry;
  ++leaf.count;
  leaf.first = leaf.begin()->digest;
}

void BlockPositions::Remove(const Place& place) noexcept {
  Leaf& leaf = m_Leaves[place.leaf];
  Entry* const at = leaf.begin() + place.entry;
  std::copy(at + 1, leaf.end(), at);
  --leaf.count;
  leaf.first = leaf.begin()->digest;
  if (leaf.count > 0) return;
  m_LeafEntries.GiveBack(leaf.entries);
  m_Leaves.erase(m_Leaves.begin() + static_cast<std::ptrdiff_t>(place.leaf));
}

}  // namespace qelta
