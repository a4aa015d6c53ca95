#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace qelta {

/// Numbers the ids of nodes or elements in the order in which they are first seen, from 0.
///
/// Ids near the number of ids seen are kept in a plain table, stray ones apart: memory follows the
/// count of ids, never their size.
class FrdIdIndex {
 public:
  static constexpr std::int32_t kUnknown = -1;

  /// The index of an id, or kUnknown.
  std::int32_t Find(std::int32_t id) const;

  /// The index of an id, which gets the next free one when it is new. The id must be positive.
  std::int32_t FindOrAdd(std::int32_t id);

  std::size_t Count() const { return m_Count; }

 private:
  void Store(std::int32_t id, std::int32_t index);

  std::vector<std::int32_t> m_Table;
  std::unordered_map<std::int32_t, std::int32_t> m_Stray;
  std::size_t m_Count = 0;
};

/// Which indices of one table of the file were seen already.
class FrdSeenIndices {
 public:
  void Clear() { m_Words.assign(m_Words.size(), 0); }

  /// Marks an index; false when it was marked before.
  bool Mark(std::int32_t index);

 private:
  std::vector<std::uint64_t> m_Words;
};

}  // namespace qelta
