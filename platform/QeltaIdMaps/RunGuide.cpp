#include "RunGuide.h"

namespace qelta {

RunGuide::RunGuide(std::uint32_t low, std::uint32_t high, std::size_t bucketCount)
    : m_Low(low), m_BucketCount(bucketCount) {
  while (std::size_t{high - low} >> m_Shift >= bucketCount) ++m_Shift;
  m_RunsBefore.reserve(bucketCount + 1);
  m_RunsBefore.push_back(0);
}

std::size_t RunGuide::AddRun(std::uint32_t number) noexcept {
  const std::size_t next = BucketOf(number) + 1;
  while (m_RunsBefore.size() <= next) m_RunsBefore.push_back(m_RunsBefore.back());
  for (std::size_t i = next; i < m_RunsBefore.size(); ++i) ++m_RunsBefore[i];
  return m_RunsBefore.size() - next;
}

std::size_t RunGuide::RemoveRun(std::uint32_t number) noexcept {
  const std::size_t next = BucketOf(number) + 1;
  for (std::size_t i = next; i < m_RunsBefore.size(); ++i) --m_RunsBefore[i];
  return m_RunsBefore.size() - next;
}

std::size_t RunGuide::LowerRun(std::uint32_t number, std::uint32_t lower) noexcept {
  const std::size_t next = BucketOf(lower) + 1;
  const std::size_t former = BucketOf(number) + 1;
  for (std::size_t i = next; i < former; ++i) ++m_RunsBefore[i];
  return former - next;
}

}  // namespace qelta
