#include "FrdSource.h"

#include <FED_Failure.h>
#include <FED_Message.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaIo|FrdSource";
constexpr std::size_t kLongestLine = std::size_t{1} << 16;

void RequireFile(const std::filesystem::path& path, const std::string& name) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) {
    FED_Failure::Throw("310000000001", kLocation, "Cannot open %s: %s. Check the path.",
                       name.c_str(), error ? error.message().c_str() : "there is no such file");
  }
  if (std::filesystem::is_directory(status)) {
    FED_Failure::Throw("310000000002", kLocation,
                       "%s is a directory. Name the result file (.frd) in it.", name.c_str());
  }
}

}  // namespace

const char* const FrdSource::kReadErrorId = "310000000004";

FrdSource::FrdSource(const std::filesystem::path& path, std::size_t chunkBytes, Progress onProgress,
                     std::function<bool()> waitForMore)
    : m_Path(path),
      m_Name(path.u8string()),
      m_OnProgress(std::move(onProgress)),
      m_WaitForMore(std::move(waitForMore)),
      m_Buffer(std::max<std::size_t>(chunkBytes, 1)) {
  RequireFile(path, m_Name);
  m_File.open(path, std::ios::in | std::ios::binary);
  if (!m_File) {
    FED_Failure::Throw("310000000003", kLocation, "Cannot open %s: %s. Check its permissions.",
                       m_Name.c_str(), std::strerror(errno));
  }
}

bool FrdSource::GetLine(std::string_view& line) {
  const std::size_t length = FindLineEnd();
  m_LineComplete = length < Available();
  if (!m_LineComplete && length == 0) return false;
  line = std::string_view(m_Buffer.data() + m_Begin, length);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  m_LastAt = m_BufferAt + m_Begin;
  m_Begin += length + (m_LineComplete ? 1 : 0);
  ++m_LineCount;
  return true;
}

// The number of bytes before the next LF, or all that are left.
std::size_t FrdSource::FindLineEnd() {
  std::size_t searched = 0;
  for (;;) {
    const char* const start = m_Buffer.data() + m_Begin;
    const void* const end = std::memchr(start + searched, '\n', Available() - searched);
    if (end != nullptr) return static_cast<std::size_t>(static_cast<const char*>(end) - start);
    searched = Available();
    if (searched > kLongestLine) {
      m_LastAt = m_BufferAt + m_Begin;
      ++m_LineCount;
      ThrowDamage("310000000005", "there is no line end where one is due");
    }
    if (!Refill(searched + 1)) return searched;
  }
}

const char* FrdSource::GetBytes(std::size_t count) {
  m_HasBytes = true;
  m_LastAt = m_BufferAt + m_Begin;
  if (Available() < count && !Refill(count)) return nullptr;
  const char* const bytes = m_Buffer.data() + m_Begin;
  m_Begin += count;
  return bytes;
}

// Moves what is left to the front and reads until `wanted` bytes are there; false at the end.
bool FrdSource::Refill(std::size_t wanted) {
  std::memmove(m_Buffer.data(), m_Buffer.data() + m_Begin, Available());
  m_BufferAt += m_Begin;
  m_End -= m_Begin;
  m_Begin = 0;
  if (m_Buffer.size() < wanted) m_Buffer.resize(std::max(wanted, 2 * m_Buffer.size()));
  while (m_End < wanted && ReadOn()) {
  }
  if (m_File.bad()) {
    FED_Failure::Throw(kReadErrorId, kLocation, "Reading %s failed after byte %Iu: %s.",
                       m_Name.c_str(), m_BufferAt + m_End, std::strerror(errno));
  }
  return m_End >= wanted;
}

// False at the end of the file.
bool FrdSource::ReadOn() {
  if (!m_File) {
    if (m_File.bad() || !m_WaitForMore || !m_WaitForMore()) return false;
    m_File.clear();
  }
  m_File.read(m_Buffer.data() + m_End, static_cast<std::streamsize>(m_Buffer.size() - m_End));
  m_End += static_cast<std::size_t>(m_File.gcount());
  if (m_OnProgress) ReportProgress();
  return true;
}

void FrdSource::ReportProgress() {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(m_Path, error);
  const std::uint64_t done = m_BufferAt + m_End;
  m_OnProgress(done, error ? done : std::max<std::uint64_t>(size, done));
}

std::string FrdSource::GetPlace() const {
  return m_HasBytes ? FED_MESSAGE("byte %Iu", m_LastAt) : FED_MESSAGE("line %Iu", m_LineCount);
}

void FrdSource::ThrowDamage(const char* messageId, const std::string& cause) const {
  FED_Failure::Throw(messageId, "|%P|QeltaIo|FrdReader",
                     "%s, %s: %s. The file is damaged or no result file; copy it again, or let the "
                     "solver write it again.",
                     m_Name.c_str(), GetPlace().c_str(), cause.c_str());
}

}  // namespace qelta
