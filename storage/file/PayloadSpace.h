#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "Extent.h"

namespace qelta {

/// Which bytes of the payload file may be written.
///
/// Bytes that a commit referred to are seen by readers of the generations from that commit (their
/// birth) up to the commit that no longer refers to them (their death), which excludes it. They are
/// free again when no such reader is left. Bytes that no commit referred to are free at once,
/// except after a commit that failed: nobody knows what it left, so they wait for one that
/// succeeds.
///
/// When memory is short while bytes are given back they stay unused; nothing else happens.
class PayloadSpace {
 public:
  using Range = std::pair<std::uint64_t, std::uint64_t>;  // offset, length

  /// `used` are the ranges that the commit `generation` refers to, in ascending order and apart;
  /// what lies between them up to `end` is free for everybody but readers of older generations.
  PayloadSpace(std::uint64_t begin, const std::vector<Range>& used, std::uint64_t end,
               std::uint64_t generation);

  /// The offset of `length` bytes to write; the smallest free place that has them, or the end.
  std::uint64_t Allocate(std::uint64_t length);

  /// `birth` is the commit that first referred to it, 0 when none did.
  void Release(const Extent& extent, std::uint64_t birth) noexcept;

  void CommitFailed() { m_IsDoubtful = true; }

  /// What was released since the commit before is seen by older readers only.
  void Committed(std::uint64_t generation) noexcept;

  /// Frees what no reader sees; `readers` are the generations that readers hold. To be called only
  /// while no reader is about to begin.
  void Reclaim(const std::vector<std::uint64_t>& readers) noexcept;

  /// The oldest generation that matters to Reclaim; the newest possible when none does.
  std::uint64_t GetOldestHeld() const;
  bool HoldsAny() const { return !m_Held.empty(); }

  /// No byte from here on is in use.
  std::uint64_t GetEnd() const { return m_End; }

 private:
  struct Held {
    Range range;
    std::uint64_t birth;
    std::uint64_t death;
  };

  void Free(Range range);
  void Remove(std::map<std::uint64_t, std::uint64_t>::iterator place);

  std::uint64_t m_End;
  std::map<std::uint64_t, std::uint64_t> m_Free;  // offset to length
  std::set<Range> m_FreeBySize;                   // length, offset
  std::vector<Held> m_Released;                   // since the last commit
  std::vector<Held> m_Held;                       // by readers
  std::vector<Range> m_Doubtful;
  bool m_IsDoubtful = false;
};

}  // namespace qelta
