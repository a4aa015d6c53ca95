#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace qelta {

// Tells in which part of a sorted list of runs to search: the numbers are divided into buckets of
// equal width, and for each bucket stands how many runs begin before it.
class RunGuide {
 public:
  RunGuide() = default;
  // Good for runs that begin from `low` to `high`; others share the first and the last bucket.
  RunGuide(std::uint32_t low, std::uint32_t high, std::size_t bucketCount);

  // The positions between which the first run that begins behind `number` stands.
  std::pair<std::size_t, std::size_t> Narrow(std::uint32_t number) const {
    const std::size_t bucket = BucketOf(number);
    if (bucket + 1 >= m_RunsBefore.size()) return {m_RunsBefore.back(), m_RunsBefore.back()};
    return {m_RunsBefore[bucket], m_RunsBefore[bucket + 1]};
  }

  // A run that begins at `number` came or went. These say how many counts they had to change.
  std::size_t AddRun(std::uint32_t number) noexcept;
  std::size_t RemoveRun(std::uint32_t number) noexcept;
  // The run that began at `number` begins at `lower` now.
  std::size_t LowerRun(std::uint32_t number, std::uint32_t lower) noexcept;

 private:
  std::size_t BucketOf(std::uint32_t number) const {
    if (number <= m_Low) return 0;
    const std::size_t bucket = std::size_t{number - m_Low} >> m_Shift;
    return bucket < m_BucketCount ? bucket : m_BucketCount - 1;
  }

  std::uint32_t m_Low = 0;
  unsigned m_Shift = 0;
  std::size_t m_BucketCount = 0;
  // Ends behind the last bucket that has ever had a run, so that appending a run changes one count.
  std::vector<std::uint32_t> m_RunsBefore;
};

}  // namespace qelta
