// Disks that fill up, and blocks that are larger than memory.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <numeric>

#include "BlockContents.h"
#include "Child.h"
#include "FED_Failure.h"
#include "FED_RecordRuns.h"
#include "Saves.h"
#include "TemporaryDirectory.h"
#include "durability/LongTests.h"

namespace qelta::test {
namespace {

constexpr std::uint64_t kMega = 1 << 20;
constexpr std::size_t kPortion = 50000;

std::vector<double> NumbersFrom(std::size_t first) {
  std::vector<double> numbers(kPortion);
  std::iota(numbers.begin(), numbers.end(), static_cast<double>(first));
  return numbers;
}

void WriteNumbers(FED_DataBlock& block, std::uint64_t bytes) {
  for (std::size_t first = 0; 8 * first < bytes; first += kPortion) {
    dynamic_cast<FED_RecordRuns&>(block).WriteRun(first, kPortion, NumbersFrom(first).data());
  }
}

bool HoldsNumbers(FED_DataBlock& block, std::uint64_t bytes) {
  bool holds = true;
  std::vector<double> found(kPortion);
  for (std::size_t first = 0; holds && 8 * first < bytes; first += kPortion) {
    dynamic_cast<FED_RecordRuns&>(block).ReadRun(first, kPortion, found.data());
    holds = found == NumbersFrom(first);
  }
  return holds;
}

struct Sizes : testing::Test {
  TemporaryDirectory directory;
  const std::string path = directory / "db";
};

/// Writes and saves fail for want of space, lose nothing, and go on when there is some.
bool FillUp(const std::string& path, const std::function<void()>& makeRoom) {
  SaveUpTo(3, path);
  const auto writer = OpenDatabase(SystemFiles(), path, FED_DatabaseDefs::READ_WRITE);
  FED_DataBlock& small = writer->CreateDataBlock(LabelKey("small"), 0, 0, "I|d");
  FED_DataBlock& large = writer->CreateDataBlock(LabelKey("large"), 0, 0, "I|d");
  WriteNumbers(small, kMega);
  EXPECT_THROW(WriteNumbers(large, 60 * kMega), FED_Failure);
  for (int i = 0; i < 2; ++i) EXPECT_THROW(writer->Save(), FED_Failure);
  EXPECT_EQ(FindDifference(path, 3), "");
  makeRoom();
  EXPECT_TRUE(HoldsNumbers(small, kMega));
  WriteNumbers(large, 60 * kMega);
  writer->Save();
  const auto reader = Open(path);
  EXPECT_TRUE(HoldsNumbers(reader->GetDataBlock(LabelKey("small")), kMega));
  EXPECT_TRUE(HoldsNumbers(reader->GetDataBlock(LabelKey("large")), 60 * kMega));
  return !testing::Test::HasFailure();
}

TEST_F(Sizes, AFullDiskLosesNothing) {
  Child full([&](const auto& signal) {
    const std::string disk = directory.GetPath();
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, "") != 0 ||
        mount("disk", disk.c_str(), "tmpfs", 0, "size=99m") != 0) {
      return false;
    }
    signal();
    WriteFile(disk + "/other", std::string(60 * kMega, ' '));
    return FillUp(path, [&] { std::filesystem::remove(disk + "/other"); });
  });
  if (!full.AwaitSignal()) GTEST_SKIP() << "a small file system cannot be mounted here";
  EXPECT_TRUE(full.EndsWell());
}

TEST_F(Sizes, AFileThatMayNotGrowLosesNothing) {
  EXPECT_TRUE(HoldsInChild([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{24 * kMega, RLIM_INFINITY};
    return setrlimit(RLIMIT_FSIZE, &limit) == 0 && FillUp(path, [&] {
             limit.rlim_cur = limit.rlim_max;
             setrlimit(RLIMIT_FSIZE, &limit);
           });
  }));
}

std::uint64_t GetPeakMemory() {
#ifdef QELTA_TEST_SANITIZED
  return 0;
#endif
  std::ifstream status("/proc/self/status");
  std::string word;
  std::uint64_t kilobytes = 0;
  while (status >> word && word != "VmHWM:") continue;
  status >> kilobytes;
  return kilobytes * 1024;
}

TEST_F(Sizes, BlocksMayBeLargerThanMemory) {
  constexpr std::uint64_t kCache = 64 * kMega;
  const std::uint64_t size = ChooseCount(1000, 10000) * kMega;
  if (std::filesystem::space(directory.GetPath()).available < size + 1000 * kMega) {
    GTEST_SKIP() << "too little space among the temporary files";
  }
  const std::wstring name = std::filesystem::path(path).wstring();
  EXPECT_TRUE(HoldsInChild([&] {
    FED_FileDatabase writer, reader;
    writer.InitDb({}, FED_DatabaseDefs::CREATE, kCache, name);
    WriteNumbers(writer.CreateDataBlock(LabelKey("large"), 0, 0, "I|d"), size);
    writer.Save();
    writer.CloseDb();
    reader.InitDb({}, FED_DatabaseDefs::READ_ONLY, kCache, name);
    EXPECT_TRUE(HoldsNumbers(reader.GetDataBlock(LabelKey("large")), size));
    EXPECT_LT(GetPeakMemory(), kCache + 64 * kMega);
    return !HasFailure();
  }));
}

}  // namespace
}  // namespace qelta::test
