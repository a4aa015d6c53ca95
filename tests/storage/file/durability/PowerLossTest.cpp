// Whenever the machine stops, the last save that returned is on the disk, or the one after it.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "Checkpoints.h"
#include "CrashLog.h"
#include "FED_Failure.h"
#include "FED_LogMacros.h"
#include "FaultyFiles.h"
#include "LongTests.h"
#include "TemporaryDirectory.h"
#include "UnsyncedFiles.h"

namespace qelta::test {
namespace {

/// Where the machine stops, and which writes since the last syncs reach the disk.
struct PowerLoss {
  std::size_t position;
  std::uint32_t seed;
};

class PowerLossTest : public testing::TestWithParam<bool> {
 protected:
  PowerLossTest() {
    FED_LogMacros::SetSink([](auto...) {}, nullptr);
    Save(FED_DatabaseDefs::CREATE, 8);
    Save(FED_DatabaseDefs::READ_WRITE, 8);
    const auto reader = OpenDatabase(m_Disk, m_Path, FED_DatabaseDefs::READ_ONLY);
    Save(FED_DatabaseDefs::READ_WRITE, 8);
  }
  ~PowerLossTest() override { FED_LogMacros::SetSink(nullptr, nullptr); }

  void Save(FED_DatabaseDefs::AccessMode mode, int count) {
    const auto database = OpenDatabase(m_Disk, m_Path, mode);
    for (int i = 0; i < count; ++i) {
      MakeCheckpoint(*database, m_Returned.size() + 1);
      SaveOnFullDisk(*database);
      m_Returned.push_back(m_Log.GetSize());
      if (i == count / 2) database->Compact();
    }
  }

  // What a failed attempt left is no part of any save.
  void SaveOnFullDisk(FED_FileDatabase& database) {
    m_Disk.SetFault({Below(12), IoProblem::NO_SPACE, false, {FileOperation::WRITE}});
    try {
      database.Save();
    } catch (const FED_Failure&) {
      database.Save();
    }
    m_Disk.ClearFault();
  }

  std::size_t Below(std::size_t end) { return m_Random() % end; }

  // Anywhere, and every third time just after a save returned.
  PowerLoss ChoosePowerLoss(std::size_t i) {
    const auto seed = static_cast<std::uint32_t>(i % 8 < 2 ? i % 8 : m_Random());
    if (i % 3 == 0) return {m_Returned[Below(m_Returned.size())], seed};
    return {Below(m_Log.GetSize() + 1), seed};
  }

  std::uint64_t CountReturned(std::size_t position) const {
    return static_cast<std::uint64_t>(
        std::upper_bound(m_Returned.begin(), m_Returned.end(), position) - m_Returned.begin());
  }

  void ExpectLastSave(const PowerLoss& loss) {
    const TemporaryDirectory directory;
    const std::string path = directory / "database";
    m_Log.BuildCrashState(loss.position, loss.seed, directory.GetPath());
    auto database = OpenDatabase(m_Files, path, FED_DatabaseDefs::READ_WRITE);
    const std::uint64_t number = ExpectWhole(*database);
    const std::uint64_t returned = CountReturned(loss.position);
    EXPECT_TRUE(number == returned || number == returned + 1) << number << " after " << returned;
    MakeCheckpoint(*database, number + 1);
    database->Save();
    database.reset();
    database = OpenDatabase(m_Files, path, FED_DatabaseDefs::READ_ONLY);
    EXPECT_EQ(ExpectWhole(*database), number + 1);
  }

  // What is left of a disk that ignores syncs.
  bool IsLastSaveLost(const PowerLoss& loss) {
    const TemporaryDirectory directory;
    m_Log.BuildCrashState(loss.position, loss.seed, directory.GetPath(), false);
    try {
      const auto database =
          OpenDatabase(m_Files, directory / "database", FED_DatabaseDefs::READ_WRITE);
      const std::uint64_t number = ReadNumber(*database);
      return number < CountReturned(loss.position) || !FindDifference(*database, number).empty();
    } catch (const FED_Failure&) {
      return true;
    }
  }

  std::mt19937 m_Random{7};
  TemporaryDirectory m_Directory;
  std::string m_Path = m_Directory / "database";
  UnsyncedFiles m_Files{GetParam()};
  CrashLog m_Log{m_Files, m_Directory.GetPath()};
  FaultyFiles m_Disk{m_Log};
  std::vector<std::size_t> m_Returned;  // where each save did
};

INSTANTIATE_TEST_SUITE_P(Places, PowerLossTest, testing::Bool(), [](const auto& place) {
  return std::string(place.param ? "Local" : "Remote");
});

TEST_P(PowerLossTest, LeavesTheLastSaveOrTheOneThatWasBeingMade) {
  const std::size_t losses = ChooseCount(60, 500);
  for (std::size_t i = 0; i < losses && !HasFailure(); ++i) {
    const PowerLoss loss = ChoosePowerLoss(i);
    SCOPED_TRACE("position " + std::to_string(loss.position) + ", seed " +
                 std::to_string(loss.seed));
    ExpectLastSave(loss);
  }
}

TEST_P(PowerLossTest, ShowsWithoutSyncs) {
  std::size_t lost = 0;
  for (std::size_t i = 0; i < 20; ++i) lost += IsLastSaveLost(ChoosePowerLoss(i)) ? 1U : 0U;
  EXPECT_GT(lost, 5U);
}

}  // namespace
}  // namespace qelta::test
