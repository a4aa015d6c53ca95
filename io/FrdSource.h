#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qelta {

/// Streams a result file, lines and raw bytes in any order, through one chunk of memory.
///
/// What GetLine and GetBytes give stays valid until the next call of either. A file that cannot be
/// opened or read is a failure, as is a line longer than any that a solver writes.
class FrdSource {
 public:
  static constexpr std::size_t kDefaultChunk = std::size_t{1} << 20;

  /// The message id of the failure of a device in the middle of a file; every other failure means
  /// that the file is missing or damaged.
  static const char* const kReadErrorId;

  /// Receives the bytes that were read and those that the file has.
  using Progress = std::function<void(std::uint64_t done, std::uint64_t total)>;

  /// `waitForMore` is asked at the end of the file; true: try again.
  explicit FrdSource(const std::filesystem::path& path, std::size_t chunkBytes = kDefaultChunk,
                     Progress onProgress = {}, std::function<bool()> waitForMore = {});

  /// From now on the end of the file is the end.
  void StopWaiting() { m_WaitForMore = nullptr; }

  /// The next line, without LF or CR LF; false at the end of the file.
  bool GetLine(std::string_view& line);

  /// False when the file ended before the end of the last line given.
  bool IsLineComplete() const { return m_LineComplete; }

  /// The next `count` bytes, or null (and nothing is consumed) when the file has fewer left.
  const char* GetBytes(std::size_t count);

  const std::string& GetName() const { return m_Name; }

  /// Where the line or bytes given last stand: "line 12", or "byte 3456" once bytes were asked for.
  std::string GetPlace() const;

  /// Throws a failure that names file, place, `cause` and what to do about damage.
  [[noreturn]] void ThrowDamage(const char* messageId, const std::string& cause) const;

 private:
  bool Refill(std::size_t wanted);
  std::size_t FindLineEnd();
  std::size_t Available() const { return m_End - m_Begin; }

  bool ReadOn();
  void ReportProgress();

  std::filesystem::path m_Path;
  std::string m_Name;
  Progress m_OnProgress;
  std::function<bool()> m_WaitForMore;
  std::ifstream m_File;
  std::vector<char> m_Buffer;
  std::size_t m_Begin = 0;       // of what was not given yet, in the buffer
  std::size_t m_End = 0;         // of what was read, in the buffer
  std::uint64_t m_BufferAt = 0;  // offset of the buffer in the file
  std::uint64_t m_LastAt = 0;    // offset of what was given last
  std::uint64_t m_LineCount = 0;
  bool m_LineComplete = true;
  bool m_HasBytes = false;
};

}  // namespace qelta
