#include "DatabaseLock.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <thread>

#include "IoFailure.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|DatabaseLock";

// Bytes of the file. The text of the writer comes first; locked bytes lie beyond it, because a
// system may refuse to read or write what another process has locked.
constexpr std::size_t kTextSize = 512;
constexpr std::uint64_t kWriter = std::uint64_t{1} << 31;
constexpr std::uint64_t kAnyReader = kWriter + 1;
constexpr std::uint64_t kFirstGeneration = std::uint64_t{1} << 32;

// A directory may be renamed, and another one made, between the opening of the file and the lock.
constexpr int kReplacements = 10;
constexpr int kTries = 2000;
constexpr std::chrono::milliseconds kPause{1};

/// "2026-11-23 01:20:08 UTC", of the Gregorian calendar; years begin in March here.
std::string DescribeNow() {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(
                           std::chrono::system_clock::now().time_since_epoch())
                           .count();
  const long long daysSinceYear0 = seconds / 86400 + 719468;
  const long long era = daysSinceYear0 / 146097;
  const long long day = daysSinceYear0 % 146097;
  const long long year = (day - day / 1460 + day / 36524 - day / 146096) / 365;
  const long long dayOfYear = day - (365 * year + year / 4 - year / 100);
  const long long month = (5 * dayOfYear + 2) / 153;
  const long long time = seconds % 86400;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04lld-%02lld-%02lld %02lld:%02lld:%02lld UTC",
                year + era * 400 + (month >= 10 ? 1 : 0), month < 10 ? month + 3 : month - 9,
                dayOfYear - (153 * month + 2) / 5 + 1, time / 3600, time / 60 % 60, time % 60);
  return text.data();
}

bool IsPrintable(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x20 && byte != 0x7f;
}

}  // namespace

DatabaseLock::DatabaseLock(FileSystem& files, const std::string& directory, bool isWriter)
    : m_Files(files), m_Path(directory + "/lock") {
  if (isWriter) {
    OpenForWriting();
  } else {
    OpenForReading();
  }
}

void DatabaseLock::BeginRead() {
  for (int i = 0; i < kReplacements; ++i) {
    LockShared(kAnyReader);
    if (!m_File || !m_Held.empty() || m_Files.IsSame(*m_File, m_Path)) return;
    OpenForReading();
  }
  FailReplaced();
}

void DatabaseLock::EndRead() {
  if (m_File) m_File->Unlock(kAnyReader, 1);
}

void DatabaseLock::Hold(std::uint64_t generation) {
  m_Held.reserve(m_Held.size() + 1);
  if (!IsHeld(generation)) LockShared(kFirstGeneration + generation);
  m_Held.push_back(generation);
}

void DatabaseLock::Release(std::uint64_t generation) {
  m_Held.erase(std::find(m_Held.begin(), m_Held.end(), generation));
  if (m_File && !IsHeld(generation)) m_File->Unlock(kFirstGeneration + generation, 1);
}

bool DatabaseLock::IsHeld(std::uint64_t generation) const {
  return std::find(m_Held.begin(), m_Held.end(), generation) != m_Held.end();
}

bool DatabaseLock::HasReadersStarting() { return m_File->IsLocked(kAnyReader, 1); }

std::vector<std::uint64_t> DatabaseLock::GetReaderGenerations(std::uint64_t first,
                                                              std::uint64_t last) {
  std::vector<std::uint64_t> found;
  last = std::min(last, kMaxGeneration);
  if (first <= last) Collect(first, last, found);
  return found;
}

void DatabaseLock::OpenForReading() {
  try {
    m_File = m_Files.Open(m_Path, OpenMode::CREATE);
    return;
  } catch (const IoFailure& failure) {
    if (failure.GetProblem() != IoProblem::DENIED) throw;
  }
  try {
    m_File = m_Files.Open(m_Path, OpenMode::READ);
  } catch (const IoFailure& failure) {
    if (failure.GetProblem() != IoProblem::NOT_FOUND) throw;
  }
}

void DatabaseLock::OpenForWriting() {
  for (int i = 0; i < kReplacements; ++i) {
    m_File = m_Files.Open(m_Path, OpenMode::CREATE);
    if (!m_File->TryLock(kWriter, 1, LockKind::EXCLUSIVE)) FailHeld();
    if (m_Files.IsSame(*m_File, m_Path)) return WriteHolder();
  }
  FailReplaced();
}

void DatabaseLock::FailReplaced() const {
  FED_Failure::Throw("220100000008", kLocation,
                     "The file '%s' is replaced again and again. Stop what does so, and keep "
                     "the file: it tells the users of the database from each other.",
                     m_Path.c_str());
}

void DatabaseLock::FailHeld() {
  std::string holder(kTextSize, '\0');
  holder.resize(m_File->ReadAt(0, holder.data(), holder.size()));
  holder.erase(std::find_if_not(holder.begin(), holder.end(), IsPrintable), holder.end());
  if (holder.empty()) holder = "somebody who has not said more yet";
  throw IoFailure(IoProblem::LOCKED, "220100000009",
                  "The database '" + ParentOf(m_Path) + "' is open for writing: " + holder +
                      ". Close it there, or open it for reading.");
}

void DatabaseLock::WriteHolder() {
  std::string text = m_Files.DescribeProcess() + " since " + DescribeNow();
  text.resize(kTextSize - 1, '\n');
  text += '\n';
  m_File->WriteAt(0, text.data(), text.size());
}

// On some systems the writer's look at the readers locks them out for a moment.
void DatabaseLock::LockShared(std::uint64_t place) {
  if (!m_File) return;
  for (int i = 0; i < kTries; ++i) {
    if (m_File->TryLock(place, 1, LockKind::SHARED)) return;
    std::this_thread::sleep_for(kPause);
  }
  IoFailure::Throw(IoProblem::LOCKED, "lock", m_Path, "another program keeps it locked");
}

void DatabaseLock::Collect(std::uint64_t first, std::uint64_t last,
                           std::vector<std::uint64_t>& found) {
  if (!m_File->IsLocked(kFirstGeneration + first, last - first + 1)) return;
  if (first == last) {
    found.push_back(first);
    return;
  }
  const std::uint64_t middle = first + (last - first) / 2;
  Collect(first, middle, found);
  Collect(middle + 1, last, found);
}

}  // namespace qelta
