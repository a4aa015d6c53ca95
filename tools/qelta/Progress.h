#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "Console.h"

namespace qelta {

/// A line about long work with its rate and the time left, on a terminal only and not before it has
/// taken half a second. While it lives, Ctrl-C ends the work at the next Show.
class Progress {
 public:
  /// `what` says what is going on. Amounts are bytes, or things of the given name.
  Progress(std::string what, bool isWanted, std::string unit = "bytes");
  /// Leaves nothing on the terminal.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// False after a Ctrl-C. Cheap: redraws ten times a second at most. A total of 0 is unknown.
  bool GoesOn(std::uint64_t done, std::uint64_t total);

  /// The same; throws Console::Interrupted after a Ctrl-C.
  void Show(std::uint64_t done, std::uint64_t total);

 private:
  using Clock = std::chrono::steady_clock;

  std::string Line(std::uint64_t done, std::uint64_t total, double seconds) const;
  std::string Amount(double amount) const;

  std::string m_What;
  std::string m_Unit;
  bool m_IsWanted;
  bool m_IsShown = false;
  Clock::time_point m_Start = Clock::now();
  Clock::time_point m_Next;
  Console::InterruptGuard m_Guard;
};

/// "1.5 GB", "12 kB", "999 B".
std::string BytesText(double bytes);

}  // namespace qelta
