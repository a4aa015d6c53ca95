#include "Progress.h"

#include <QeltaUtf8.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace qelta {
namespace {

constexpr std::chrono::milliseconds kPatience(500);
constexpr std::chrono::milliseconds kInterval(100);

std::string TimeText(double seconds) {
  const auto whole = static_cast<std::uint64_t>(std::llround(seconds));
  if (whole < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
  return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

}  // namespace

std::string BytesText(double bytes) {
  constexpr const char* kUnits[] = {"B", "kB", "MB", "GB", "TB"};
  std::size_t unit = 0;
  for (; bytes >= 999.5 && unit + 1 < std::size(kUnits); ++unit) bytes /= 1000;
  return fmt::format(unit == 0 || bytes >= 9.95 ? "{:.0f} {}" : "{:.1f} {}", bytes, kUnits[unit]);
}

Progress::Progress(std::string what, bool isWanted, std::string unit)
    : m_What(std::move(what)),
      m_Unit(std::move(unit)),
      m_IsWanted(isWanted && Console::ShowsProgress()),
      m_Next(m_Start + kPatience) {}

Progress::~Progress() {
  if (m_IsShown) Console::ClearProgress();
}

void Progress::Show(std::uint64_t done, std::uint64_t total) {
  if (!GoesOn(done, total)) throw Console::Interrupted();
}

bool Progress::GoesOn(std::uint64_t done, std::uint64_t total) {
  const Clock::time_point now = Clock::now();
  if (Console::IsInterrupted()) return false;
  if (!m_IsWanted || now < m_Next) return true;
  m_Next = now + kInterval;
  m_IsShown = true;
  Console::ShowProgress(Line(done, total, std::chrono::duration<double>(now - m_Start).count()));
  return true;
}

std::string Progress::Amount(double amount) const {
  return m_Unit == "bytes" ? BytesText(amount) : fmt::format("{:.0f} {}", amount, m_Unit);
}

std::string Progress::Line(std::uint64_t done, std::uint64_t total, double seconds) const {
  const double rate = static_cast<double>(done) / seconds;
  const std::string speed = Amount(rate) + "/s";
  if (total == 0)
    return fmt::format("{}  {}  {}", m_What, Amount(static_cast<double>(done)), speed);
  const double part = static_cast<double>(done) / static_cast<double>(total);
  const std::string end =
      fmt::format(" {:3.0f} %  {}  {} left", 100 * part, speed,
                  rate > 0 ? TimeText(static_cast<double>(total - done) / rate) : "?");
  // What the terminal leaves for the bar; the last column stays free.
  const std::size_t taken = CountCharacters(m_What) + end.size() + 5;
  const std::size_t width = std::min<std::size_t>(Console::GetProgressWidth(), 100);
  if (width < taken + 8) {
    const std::string line = m_What + " " + end;
    return line.substr(0, SkipCharacters(line, 0, width - 1));
  }
  const std::size_t room = width - taken;
  const auto full = std::min(static_cast<std::size_t>(part * static_cast<double>(room)), room);
  return fmt::format("{}  [{:<{}}]{}", m_What, std::string(full, '#'), room, end);
}

}  // namespace qelta
