#pragma once

#include <algorithm>
#include <cstdint>

#include "FED_FileDatabase.h"

namespace qelta {

/// Tells a listener how far long work has come.
class ProgressMeter {
 public:
  /// `progress` outlives the meter.
  explicit ProgressMeter(const FED_FileDatabase::Progress& progress) : m_Progress(progress) {}

  void SetTotal(std::uint64_t total) { m_Total = total; }

  /// False from the moment on that the listener wants no more.
  bool Reach(std::uint64_t done) {
    if (m_GoesOn && m_Progress) m_GoesOn = m_Progress(std::min(done, m_Total), m_Total);
    return m_GoesOn;
  }
  bool GoesOn() const { return m_GoesOn; }

 private:
  const FED_FileDatabase::Progress& m_Progress;
  std::uint64_t m_Total = 0;
  bool m_GoesOn = true;
};

}  // namespace qelta
