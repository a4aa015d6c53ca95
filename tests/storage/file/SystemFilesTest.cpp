#include <gtest/gtest.h>

#include <functional>

#include "ChildProcess.h"
#include "FileSystem.h"
#include "IoFailure.h"
#include "TemporaryDirectory.h"

namespace qelta::test {
namespace {

#if defined(_WIN32)
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

class SystemFilesTest : public testing::Test {
 protected:
  std::unique_ptr<File> Open(const std::string& name, OpenMode mode = OpenMode::CREATE) {
    return files.Open(directory / name, mode);
  }

  TemporaryDirectory directory;
  FileSystem& files = SystemFiles();
};

TEST_F(SystemFilesTest, ReadsEndWithTheFile) {
  constexpr std::uint64_t kFar = (std::uint64_t{5} << 30) + 3;
  const auto file = Open("sparse");
  file->WriteAt(kFar, "abcd", 4);
  std::string read(10, '?');
  EXPECT_EQ(file->ReadAt(kFar - 2, read.data(), 10), 6u);
  EXPECT_EQ(read, std::string("\0\0abcd????", 10));
  EXPECT_EQ(file->ReadAt(kFar + 4, read.data(), 10), 0u);
  EXPECT_EQ(file->ReadAt(2 * kFar, read.data(), 10), 0u);
  file->Truncate(kFar + 1);
  file->Sync();
  EXPECT_EQ(file->GetSize(), kFar + 1);
}

TEST_F(SystemFilesTest, LocksBelongToTheFileObject) {
  constexpr std::uint64_t kPlace = (std::uint64_t{1} << 32) + 7;
  const auto mine = Open("lock");
  const auto other = Open("lock");
  for (const LockKind kind : {LockKind::SHARED, LockKind::EXCLUSIVE}) {
    const bool isShared = kind == LockKind::SHARED;
    ASSERT_TRUE(mine->TryLock(kPlace, 2, kind));
    const auto isInTheWay = [&](File& file) {
      return !file.TryLock(kPlace + 1, 5, LockKind::EXCLUSIVE) && file.IsLocked(0, kPlace + 1) &&
             !file.IsLocked(kPlace + 2, 5) && file.TryLock(kPlace, 1, LockKind::SHARED) == isShared;
    };
    EXPECT_TRUE(isInTheWay(*other));
    EXPECT_TRUE(HoldsInChild([&] { return isInTheWay(*Open("lock")); }));
    if (isShared) other->Unlock(kPlace, 1);
    Open("lock");  // its end releases nothing
    EXPECT_TRUE(other->IsLocked(kPlace, 1));
    mine->Unlock(kPlace, 2);
    EXPECT_FALSE(other->IsLocked(kPlace, 2));
  }
  EXPECT_TRUE(mine->TryLock(kPlace, 1, LockKind::EXCLUSIVE));
}

TEST_F(SystemFilesTest, AForkedChildClosesAndReleasesNothing) {
  auto mine = Open("lock");
  ASSERT_TRUE(mine->TryLock(0, 1, LockKind::EXCLUSIVE));
  const std::uint64_t count = FileSystem::GetForkCount();
  EXPECT_TRUE(HoldsInChild([&] {
    mine.reset();
    return FileSystem::GetForkCount() > count;
  }));
  EXPECT_EQ(FileSystem::GetForkCount(), count);
  EXPECT_TRUE(Open("lock")->IsLocked(0, 1));
}

TEST_F(SystemFilesTest, FilesKeepAwayFromTheStandardStreams) {
  EXPECT_TRUE(HoldsInChild([&] {
    for (const int stream : {0, 1, 2}) close(stream);
    const auto file = Open("data");
    return write(2, "message", 7) == -1 && file->GetSize() == 0;
  }));
}

TEST_F(SystemFilesTest, NamesAreMadeRenamedAndRemoved) {
  files.MakeDirectory(directory / "d");
  auto a = Open("d/a");
  const auto b = Open("d/b");
  if (kIsWindows) files.Rename(directory / "d/b", directory / "b");  // nothing replaces it there
  EXPECT_TRUE(files.IsSame(*a, directory / "d/../d/a"));
  files.Rename(directory / "d/a", directory / "d/b");
  EXPECT_TRUE(files.IsSame(*a, directory / "d/b"));
  EXPECT_FALSE(files.IsSame(*b, directory / "d/b"));
  EXPECT_EQ(files.List(directory / "d"), std::vector<std::string>{"b"});
  EXPECT_EQ(files.GetKind(directory / "d"), PathKind::DIRECTORY);
  EXPECT_EQ(files.GetKind(directory / "d/b"), PathKind::FILE);
  EXPECT_EQ(files.GetKind(directory / "d/b/c"), PathKind::NOTHING);
  if (!kIsWindows) {
    EXPECT_EQ(files.GetKind("/dev/null"), PathKind::OTHER);
  }
  files.Remove(directory / "d/b");
  a.reset();
  files.RemoveDirectory(directory / "d");
  files.SyncDirectory(directory.GetPath());
}

TEST_F(SystemFilesTest, FailuresSayWhatTheProblemIs) {
  Open("file");
  files.MakeDirectory(directory / "full");
  Open("full/file");
  const struct {
    const char* name;
    IoProblem problem;
    std::function<void(const std::string&)> action;
  } rows[] = {
      {"absent", IoProblem::NOT_FOUND, [&](auto& p) { files.Open(p, OpenMode::READ_WRITE); }},
      {"absent", IoProblem::NOT_FOUND, [&](auto& p) { files.Remove(p); }},
      {"file/x", IoProblem::NOT_FOUND, [&](auto& p) { files.Open(p, OpenMode::CREATE); }},
      {"full", IoProblem::EXISTS, [&](auto& p) { files.RemoveDirectory(p); }},
      {"full", IoProblem::EXISTS, [&](auto& p) { files.Open(p, OpenMode::READ); }},
      {"file", kIsWindows ? IoProblem::DENIED : IoProblem::OTHER,
       [&](auto& p) { files.Open(p, OpenMode::READ)->WriteAt(0, "x", 1); }},
  };
  for (const auto& row : rows) {
    const std::string path = directory / row.name;
    try {
      row.action(path);
      ADD_FAILURE() << path;
    } catch (const IoFailure& failure) {
      EXPECT_EQ(failure.GetProblem(), row.problem) << failure.what();
      EXPECT_NE(failure.GetMessageText().find("'" + path + "'"), std::string::npos);
    }
  }
}

}  // namespace
}  // namespace qelta::test
