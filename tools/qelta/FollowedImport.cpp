#include "FollowedImport.h"

#include <FED_Failure.h>

#include <filesystem>
#include <system_error>
#include <thread>

#include "Console.h"

namespace qelta {
namespace {

constexpr std::chrono::milliseconds kPause(200);
constexpr std::chrono::seconds kBetweenSaves(5);

bool IsOver(std::chrono::steady_clock::time_point start, std::optional<double> timeout) {
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  return timeout && passed.count() >= *timeout;
}

void Pause() {
  Console::ThrowIfInterrupted();
  std::this_thread::sleep_for(kPause);
  Console::ThrowIfInterrupted();
}

}  // namespace

void WaitForFile(const std::string& file, std::optional<double> timeout) {
  const auto start = std::chrono::steady_clock::now();
  const std::filesystem::path path = std::filesystem::u8path(file);
  std::error_code error;
  while (!std::filesystem::exists(path, error) && !IsOver(start, timeout)) Pause();
}

FollowedImport::FollowedImport(std::string file, TargetDatabase& target,
                               std::optional<double> timeout)
    : m_File(std::move(file)), m_Target(target), m_Timeout(timeout) {}

void FollowedImport::Join(FrdReadOptions& reading, FrdImportChoice& choice) {
  reading.acceptRunningJob = true;
  reading.waitForMore = [this] { return WaitForMore(); };
  choice.onTable = [this](bool isOpen) { OnTable(isOpen); };
}

bool FollowedImport::WaitForMore() {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(std::filesystem::u8path(m_File), error);
  if (error || size < m_Size) {
    FED_Failure::Throw("", "|%P|qelta|FollowedImport",
                       "%s became shorter: the solver began anew. Import it again.",
                       m_File.c_str());
  }
  if (size > m_Size) {
    m_Size = size;
    m_Grown = Clock::now();
    return true;
  }
  if (m_HasUnsaved && !m_IsTableOpen) Save();
  m_HasWaited = true;
  if (IsOver(m_Grown, m_Timeout)) return false;
  Pause();
  return true;
}

void FollowedImport::OnTable(bool isOpen) {
  m_IsTableOpen = isOpen;
  if (isOpen) return;
  m_HasUnsaved = true;
  if (m_HasWaited || Clock::now() - m_Saved > kBetweenSaves) Save();
}

void FollowedImport::Save() {
  m_Target.Save();
  m_Saved = Clock::now();
  m_HasUnsaved = m_HasWaited = false;
}

}  // namespace qelta
