#include "QeltaOutputFile.h"

#include <FED_Failure.h>
#include <FED_Message.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <system_error>

namespace qelta {
namespace {

constexpr const char* kFailureId = "310000000900";

std::filesystem::path TemporaryNameFor(const std::filesystem::path& path) {
  std::filesystem::path name = path;
  name += FED_MESSAGE(".part-%08x", std::random_device()());
  return name;
}

}  // namespace

QeltaOutputFile::QeltaOutputFile(const std::string& path)
    : m_Path(std::filesystem::u8path(path)), m_Temporary(TemporaryNameFor(m_Path)) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(m_Path, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    Fail("something that is no plain file has this name");
  }
  errno = 0;
  m_File.open(m_Temporary, std::ios::out | std::ios::binary | std::ios::trunc);
  if (!m_File) FailBySystem();
}

QeltaOutputFile::~QeltaOutputFile() {
  if (m_IsCommitted) return;
  m_File.close();
  std::error_code ignored;
  std::filesystem::remove(m_Temporary, ignored);
}

void QeltaOutputFile::Write(const void* data, std::size_t bytes) {
  errno = 0;
  m_File.write(static_cast<const char*>(data), static_cast<std::streamsize>(bytes));
  if (!m_File) FailBySystem();
  m_Position += bytes;
}

void QeltaOutputFile::Seek(std::uint64_t position) {
  errno = 0;
  if (!m_File.seekp(static_cast<std::streamoff>(position))) FailBySystem();
  m_Position = position;
}

void QeltaOutputFile::Close() {
  if (!m_File.is_open()) return;
  errno = 0;
  m_File.close();
  if (!m_File) FailBySystem();
}

void QeltaOutputFile::Commit() {
  Close();
  std::error_code error;
  std::filesystem::rename(m_Temporary, m_Path, error);
  if (error) Fail(error.message());
  m_IsCommitted = true;
}

bool QeltaOutputFile::IsFailure(const FED_Exception& failure) {
  return failure.GetMessageId() == kFailureId;
}

void QeltaOutputFile::FailBySystem() const {
  Fail(errno != 0 ? std::strerror(errno) : "the device does not take the data");
}

void QeltaOutputFile::Fail(const std::string& cause) const {
  FED_Failure::Throw(kFailureId, "|%P|QeltaIo|QeltaOutputFile",
                     "Cannot write %s: %s. Check the place and its room.",
                     m_Path.u8string().c_str(), cause.c_str());
}

}  // namespace qelta
