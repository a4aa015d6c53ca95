#pragma once

#include <FrdImport.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "TargetDatabase.h"

namespace qelta {

/// Waits until there is a file; fails when it takes longer than `timeout` seconds.
void WaitForFile(const std::string& file, std::optional<double> timeout);

/// An import that keeps up with a file while it is written: at its end it waits for more, and what
/// is whole is saved before it waits or as soon as it can be after, and every few seconds.
class FollowedImport {
 public:
  /// The database must outlive this object.
  FollowedImport(std::string file, TargetDatabase& target, std::optional<double> timeout);

  /// Makes an import with these options such a one; it must end before this object goes.
  void Join(FrdReadOptions& reading, FrdImportChoice& choice);

 private:
  using Clock = std::chrono::steady_clock;

  bool WaitForMore();
  void OnTable(bool isOpen);
  void Save();

  std::string m_File;
  TargetDatabase& m_Target;
  std::optional<double> m_Timeout;
  std::uint64_t m_Size = 0;
  Clock::time_point m_Grown = Clock::now();
  Clock::time_point m_Saved = Clock::now();
  bool m_IsTableOpen = false;
  bool m_HasUnsaved = false;
  bool m_HasWaited = false;  // since the last save
};

}  // namespace qelta
