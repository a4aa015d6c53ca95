// A writer that is killed at any moment leaves the save that returned last, or the one that it was
// making.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <random>
#include <thread>

#include "Checkpoints.h"
#include "FED_LogMacros.h"
#include "LongTests.h"
#include "TemporaryDirectory.h"
#include "UnsyncedFiles.h"

namespace qelta::test {
namespace {

/// A process that saves until it is killed.
class Saver {
 public:
  explicit Saver(const std::string& path) {
    EXPECT_EQ(pipe(m_Pipe), 0);
    m_Process = fork();
    if (m_Process == 0) Run(path);
    close(m_Pipe[1]);
  }
  ~Saver() { close(m_Pipe[0]); }
  Saver(const Saver&) = delete;
  Saver& operator=(const Saver&) = delete;

  /// Waits for the next save to return; its number, 0 when there will be none.
  std::uint64_t ReadReturned() {
    std::uint64_t number = 0;
    return read(m_Pipe[0], &number, sizeof number) == sizeof number ? number : 0;
  }

  void Kill() {
    int status = 0;
    EXPECT_EQ(kill(m_Process, SIGKILL), 0);
    EXPECT_EQ(waitpid(m_Process, &status, 0), m_Process);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "it ended by itself";
  }

 private:
  [[noreturn]] void Run(const std::string& path) {
    try {
      for (;;) SaveSome(path);
    } catch (const std::exception& failure) {
      std::fprintf(stderr, "%s\n", failure.what());
    }
    _exit(1);
  }

  void SaveSome(const std::string& path) {
    UnsyncedFiles files;
    const auto database = OpenDatabase(files, path, FED_DatabaseDefs::READ_WRITE);
    for (int i = 0; i < 12; ++i) {
      const std::uint64_t number = ReadNumber(*database) + 1;
      MakeCheckpoint(*database, number);
      database->Save();
      if (write(m_Pipe[1], &number, sizeof number) != sizeof number) _exit(2);
      if (number % 10 == 0) database->Compact();
    }
  }

  int m_Pipe[2] = {-1, -1};
  pid_t m_Process = -1;
};

class Kill : public testing::Test {
 protected:
  Kill() {
    FED_LogMacros::SetSink([](auto...) {}, nullptr);
  }
  ~Kill() override { FED_LogMacros::SetSink(nullptr, nullptr); }

  std::size_t Below(std::size_t end) { return m_Random() % end; }

  // The number of the last save that returned.
  std::uint64_t SaveAndKill() {
    Saver saver(m_Path);
    std::uint64_t last = 0;
    const std::size_t saves = Below(8);
    for (std::size_t i = 0; i < saves; ++i) last = saver.ReadReturned();
    std::this_thread::sleep_for(std::chrono::microseconds(Below(8000)));
    saver.Kill();
    while (const std::uint64_t number = saver.ReadReturned()) last = number;
    return last;
  }

  std::uint64_t Look(FED_DatabaseDefs::AccessMode mode) {
    return ExpectWhole(*OpenDatabase(m_Files, m_Path, mode));
  }

  std::mt19937 m_Random{4};
  TemporaryDirectory m_Directory;
  std::string m_Path = m_Directory / "database";
  UnsyncedFiles m_Files;
};

TEST_F(Kill, LeavesTheLastSaveOrTheOneThatWasBeingMade) {
  std::uint64_t last = 0;
  std::unique_ptr<FED_FileDatabase> onlooker;
  const std::size_t kills = ChooseCount(60, 1000);
  for (std::size_t i = 0; i < kills && !HasFailure(); ++i) {
    SCOPED_TRACE("kill " + std::to_string(i));
    last = std::max(last, SaveAndKill());
    const bool isThere = last > 0 && i % 2 == 0;
    const std::uint64_t number =
        Look(isThere ? FED_DatabaseDefs::READ_ONLY : FED_DatabaseDefs::READ_WRITE);
    EXPECT_TRUE(number == last || number == last + 1) << number << " after " << last;
    EXPECT_EQ(Look(FED_DatabaseDefs::READ_WRITE), number);
    EXPECT_EQ(Look(FED_DatabaseDefs::READ_ONLY), number);
    if (onlooker == nullptr) {
      onlooker = OpenDatabase(m_Files, m_Path, FED_DatabaseDefs::READ_ONLY);
    } else {
      ExpectWhole(*onlooker);
      if (Below(3) == 0) onlooker->Refresh();
    }
    last = number;
  }
  RecordProperty("saves", static_cast<int>(last));
}

}  // namespace
}  // namespace qelta::test
