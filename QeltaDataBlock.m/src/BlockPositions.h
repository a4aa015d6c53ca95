#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "FED_DataDescriptor.h"
#include "KeyDigest.h"
#include "Slabs.h"

namespace qelta {

/// Which position each registered descriptor leads to, ordered by `FED_DataDescriptor::operator<`.
///
/// Stored keys never move: the address of a key stays valid until its entry is erased or the whole
/// is cleared, assigned or destroyed. Find, Set and Erase cost a logarithmic search, Set of a key
/// behind all others a constant time. The memory of erased entries serves later ones.
///
/// The order is kept in a list of leaves, each a short sorted list of entries. Searches compare the
/// digests of keys there, and look at the keys themselves only where those are equal and not whole.
class BlockPositions {
 public:
  static constexpr std::int32_t kNone = -1;

  BlockPositions() = default;
  /// Copies the keys, which get addresses of their own.
  BlockPositions(const BlockPositions& other);
  BlockPositions& operator=(const BlockPositions& other);
  /// Moving leaves the source empty; the keys keep their addresses.
  BlockPositions(BlockPositions&& other) noexcept = default;
  BlockPositions& operator=(BlockPositions&& other) noexcept = default;

  /// The position of an equal key, or kNone.
  std::int32_t Find(const FED_DataDescriptor& key) const;

  /// Enters a copy of `key`, or only replaces the position of an equal key that is there; returns
  /// the stored key. Nothing changes when memory is short.
  const FED_DataDescriptor& Set(const FED_DataDescriptor& key, std::int32_t position);

  /// `key` may be the stored key itself.
  void Erase(const FED_DataDescriptor& key);

  void Clear();

  std::size_t Size() const { return m_Keys.Size(); }

  /// Calls visit(key, position) for every entry in ascending key order. `visit` must not change
  /// the entries.
  template <class Visit>
  void ForEach(Visit visit) const {
    for (const Leaf& leaf : m_Leaves) {
      for (const Entry& entry : leaf) visit(std::as_const(*entry.key), entry.position);
    }
  }

 private:
  static constexpr std::size_t kLeafEntries = 64;

  struct Entry {
    KeyDigest digest;
    FED_DataDescriptor* key;
    std::int32_t position;
  };

  using LeafEntries = std::array<Entry, kLeafEntries>;

  // Plain, as the list moves many of them when it gains one.
  struct Leaf {
    Entry* begin() const { return entries->data(); }
    Entry* end() const { return begin() + count; }

    KeyDigest first;  // of the first entry, so that a search among leaves need not follow pointers
    std::size_t count;
    LeafEntries* entries;
  };

  // A key in search of its place.
  struct Probe {
    explicit Probe(const FED_DataDescriptor& sought) : digest(sought), key(sought) {}
    bool IsEqual(const Entry& entry) const;
    bool IsBefore(const Entry& entry) const;
    bool IsBefore(const Leaf& leaf) const;

    KeyDigest digest;
    const FED_DataDescriptor& key;
  };

  // Behind the entries that are not above a key: where it belongs when it is not there yet.
  struct Place {
    std::size_t leaf;
    std::size_t entry;
  };

  Place PlaceOf(const Probe& probe) const;
  // The entry in front of the place of `probe` if it is that of an equal key, else null.
  Entry* EntryAt(const Place& place, const Probe& probe) const;
  Place MakeRoom(const Place& place);
  void AddLeaf(std::size_t index);
  void Insert(const Place& place, const Entry& entry) noexcept;
  void Remove(const Place& place) noexcept;

  std::vector<Leaf> m_Leaves;  // none is empty
  Slabs<LeafEntries, 8> m_LeafEntries;
  Slabs<FED_DataDescriptor, 64> m_Keys;
};

}  // namespace qelta
