#include "DatabaseLock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "ChildProcess.h"
#include "FailureMatcher.h"
#include "ForwardingFiles.h"
#include "IoFailure.h"
#include "ScopedEnvironment.h"
#include "TemporaryDirectory.h"

namespace qelta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DatabaseLockTest : public testing::Test {
 protected:
  std::unique_ptr<DatabaseLock> Make(bool isWriter) {
    return std::make_unique<DatabaseLock>(SystemFiles(), directory.GetPath(), isWriter);
  }
  std::string FailToWrite() {
    return CatchFailure([&] { Make(true); }).GetMessageText();
  }

  TemporaryDirectory directory;
};

TEST_F(DatabaseLockTest, ASecondWriterIsToldWhoTheFirstIs) {
  auto writer = Make(true);
  const std::string text = FailToWrite();
  EXPECT_THAT(text, HasSubstr("process " + std::to_string(getpid()) + " on host "));
  EXPECT_THAT(text, testing::ContainsRegex(" since 20..-..-.. ..:..:.. UTC\\. Close"));
  EXPECT_TRUE(HoldsInChild([&] { return FailToWrite() == text; }));
  writer.reset();
  Make(true);
}

TEST_F(DatabaseLockTest, AForkDoesNotReleaseIt) {
  auto writer = Make(true);
  const std::string text = FailToWrite();
  EXPECT_TRUE(HoldsInChild([&] {
    writer.reset();
    return FailToWrite() == text;
  }));
}

// Where the process of a death test begins the case anew, it is told where this one's directory is.
TEST_F(DatabaseLockTest, AnotherProcessIsKeptOut) {
  const char* const given = std::getenv("QELTA_TEST_PLACE");
  const std::string place = given != nullptr ? given : directory.GetPath();
  const ScopedEnvironment forChildren("QELTA_TEST_PLACE", place.c_str());
  const auto writer = given == nullptr ? Make(true) : nullptr;
  const auto write = [&] {
    std::fputs(CatchFailure([&] { DatabaseLock(SystemFiles(), place, true); }).what(), stderr);
    std::exit(7);
  };
  EXPECT_EXIT(write(), testing::ExitedWithCode(7), "is open for writing: process ");
}

TEST_F(DatabaseLockTest, TheWriterSeesWhatReadersHold) {
  constexpr std::uint64_t kMax = DatabaseLock::kMaxGeneration;
  const auto early = Make(false);
  const auto writer = Make(true);
  const auto reader = Make(false);
  EXPECT_THAT(writer->GetReaderGenerations(0, ~std::uint64_t{0}), IsEmpty());
  EXPECT_FALSE(writer->HasReadersStarting());
  early->BeginRead();
  reader->BeginRead();
  EXPECT_TRUE(writer->HasReadersStarting());
  for (const std::uint64_t generation : {std::uint64_t{0}, kMax}) early->Hold(generation);
  for (const unsigned generation : {7u, 7u, 8u}) reader->Hold(generation);
  early->EndRead();
  EXPECT_TRUE(writer->HasReadersStarting());
  reader->EndRead();
  EXPECT_FALSE(writer->HasReadersStarting());
  EXPECT_THAT(writer->GetReaderGenerations(0, ~std::uint64_t{0}), ElementsAre(0, 7, 8, kMax));
  EXPECT_THAT(writer->GetReaderGenerations(1, 7), ElementsAre(7));
  EXPECT_THAT(writer->GetReaderGenerations(9, 1000), IsEmpty());
  reader->Release(7);
  EXPECT_THAT(writer->GetReaderGenerations(1, 9), ElementsAre(7, 8));
  reader->Release(7);
  EXPECT_THAT(writer->GetReaderGenerations(1, 9), ElementsAre(8));
}

TEST_F(DatabaseLockTest, AReplacedDirectoryGetsALockOfItsOwn) {
  const std::string path = directory / "db";
  std::filesystem::create_directory(path);
  DatabaseLock reader(SystemFiles(), path, false);
  std::filesystem::rename(path, directory / "aside");
  std::filesystem::create_directory(path);
  DatabaseLock writer(SystemFiles(), path, true);
  EXPECT_FALSE(writer.HasReadersStarting());
  reader.BeginRead();
  EXPECT_TRUE(writer.HasReadersStarting());
}

/// Nothing can be written here.
class ReadOnlyFiles : public ForwardingFiles {
 public:
  using ForwardingFiles::ForwardingFiles;

  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override {
    if (mode != OpenMode::READ) IoFailure::Throw(IoProblem::DENIED, "open", path, "read-only");
    return ForwardingFiles::Open(path, mode);
  }
};

TEST_F(DatabaseLockTest, AReaderWithoutPermissionsLocksWhereItCan) {
  ReadOnlyFiles files(SystemFiles());
  DatabaseLock without(files, directory.GetPath(), false);
  without.BeginRead();
  without.Hold(3);
  without.EndRead();
  without.Release(3);
  EXPECT_THROW(DatabaseLock(files, directory.GetPath(), true), IoFailure);
  const auto writer = Make(true);
  DatabaseLock with(files, directory.GetPath(), false);
  with.BeginRead();
  with.Hold(3);
  EXPECT_TRUE(writer->HasReadersStarting());
  EXPECT_THAT(writer->GetReaderGenerations(0, 9), ElementsAre(3));
}

}  // namespace
}  // namespace qelta::test
