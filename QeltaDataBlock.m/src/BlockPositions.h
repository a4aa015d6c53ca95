#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "FED_DataDescriptor.h"

namespace qelta {

/// Which position each registered descriptor leads to, ordered by `FED_DataDescriptor::operator<`.
///
/// Stored keys never move: the address of a key stays valid until its entry is erased or the whole
/// is cleared, assigned or destroyed. Find, Set and Erase cost a logarithmic search.
class BlockPositions {
 public:
  static constexpr std::int32_t kNone = -1;

  /// The position of an equal key, or kNone.
  std::int32_t Find(const FED_DataDescriptor& key) const {
    const auto found = m_Positions.find(key);
    return found == m_Positions.end() ? kNone : found->second;
  }

  /// Enters a copy of `key`, or only replaces the position of an equal key that is there; returns
  /// the stored key. Nothing changes when memory is short.
  const FED_DataDescriptor& Set(const FED_DataDescriptor& key, std::int32_t position) {
    return m_Positions.insert_or_assign(key, position).first->first;
  }

  /// `key` may be the stored key itself.
  void Erase(const FED_DataDescriptor& key) { m_Positions.erase(key); }

  void Clear() { m_Positions.clear(); }

  std::size_t Size() const { return m_Positions.size(); }

  /// Calls visit(key, position) for every entry in ascending key order. `visit` must not change
  /// the entries.
  template <class Visit>
  void ForEach(Visit visit) const {
    for (const auto& [key, position] : m_Positions) visit(key, position);
  }

 private:
  std::map<FED_DataDescriptor, std::int32_t> m_Positions;
};

}  // namespace qelta
