#pragma once

#include <cstdint>

#include "FED_DataDescriptor.h"

namespace qelta {

/// The head of a descriptor in 128 bits that order as `FED_DataDescriptor::operator<` does: the
/// lower of two different digests belongs to the lower key. Keys with equal digests are equal when
/// these are whole; else only the keys themselves tell their order.
class KeyDigest {
 public:
  /// Belongs to no key.
  KeyDigest() = default;

  explicit KeyDigest(const FED_DataDescriptor& key);

  /// True when the digest holds all of the key.
  bool IsWhole() const { return (m_Low & 1) == 0; }

  bool operator==(const KeyDigest& other) const {
    return m_High == other.m_High && m_Low == other.m_Low;
  }
  bool operator!=(const KeyDigest& other) const { return !(*this == other); }
  bool operator<(const KeyDigest& other) const {
    return m_High != other.m_High ? m_High < other.m_High : m_Low < other.m_Low;
  }

 private:
  void Append(std::uint64_t value, unsigned bits) {
    m_High = m_High << bits | m_Low >> (64 - bits);
    m_Low = m_Low << bits | value;
  }

  // From the top: the mask of specified fields, the first four of these, and one bit that is set
  // unless this is all of the key.
  std::uint64_t m_High = 0;
  std::uint64_t m_Low = 0;
};

}  // namespace qelta
