// Every operation of the file system fails in turn, and every allocation: nothing happens but a
// failure, and no save that returned is lost.

#include <gtest/gtest.h>

#include <new>

#include "Checkpoints.h"
#include "FED_LogMacros.h"
#include "FailingAllocation.h"
#include "FailingSqliteMemory.h"
#include "FaultyFiles.h"
#include "LongTests.h"
#include "TemporaryDirectory.h"
#include "UnsyncedFiles.h"

namespace qelta::test {
namespace {

using Mode = FED_DatabaseDefs::AccessMode;

/// What an object may do after a failure.
enum class Afterwards { WORKS, REFUSES, ANYTHING };

/// The life of a database that failures may break off, and what is known about it then.
class Life {
 public:
  explicit Life(FileSystem& files) : m_Files(files) {}

  void Live() {
    try {
      TryToLive();
      return;
    } catch (const FED_Failure& failure) {
      EXPECT_NE(failure.GetMessageText(), "");
    } catch (const std::bad_alloc&) {
    }
    m_IsBroken = true;
  }

  /// Without failures from here on; `afterwards` is about saves.
  void End(Afterwards afterwards) {
    const bool isOpen = m_Writer != nullptr && m_Writer->IsInitialized();
    if (m_IsBroken && isOpen && afterwards == Afterwards::WORKS) GoOn();
    if (m_IsSaving && afterwards == Afterwards::REFUSES) {
      EXPECT_THROW(m_Writer->Save(), FED_Failure);
    }
    m_Reader.reset();
    m_Writer.reset();
    ExpectLastSave();
  }

 private:
  void TryToLive() {
    Open(Mode::CREATE);
    Save(1);
    Save(2);
    m_Reader = OpenDatabase(m_Files, m_Path, Mode::READ_ONLY);
    Expect(*m_Reader, 2);
    Save(3);
    Expect(*m_Reader, 2);
    m_Reader->Refresh();
    Expect(*m_Reader, 3);
    m_Writer->Compact();
    Save(4);
    m_Reader->CloseDb();
    m_Writer->CloseDb();
    Open(Mode::READ_WRITE);
    Expect(*m_Writer, 4);
    Save(5);
    m_Writer->CloseDb();
    Open(Mode::CREATE);
    Save(1);
    m_Writer->CloseDb();
  }

  void Open(Mode mode) {
    m_Writer.reset();
    m_Writer = OpenDatabase(m_Files, m_Path, mode);
  }

  void Save(std::uint64_t number) {
    m_Begun = number;
    MakeCheckpoint(*m_Writer, number);
    m_IsSaving = true;
    m_Writer->Save();
    m_IsSaving = false;
    m_Saved = number;
  }

  // The same object has lost nothing.
  void GoOn() {
    try {
      if (!m_IsSaving) MakeCheckpoint(*m_Writer, m_Begun);
      m_Writer->Save();
      m_IsSaving = false;
      m_Saved = m_Begun;
      Expect(*m_Writer, m_Saved);
    } catch (const std::exception& failure) {
      ADD_FAILURE() << failure.what();
    }
  }

  void ExpectLastSave() {
    UnsyncedFiles files;
    const auto database = OpenDatabase(files, m_Path, Mode::READ_WRITE);
    const std::uint64_t number = ReadNumber(*database);
    Expect(*database, number);
    EXPECT_TRUE(number == m_Saved || (m_IsSaving && number == m_Begun))
        << number << " instead of " << m_Saved << " or " << m_Begun;
  }

  static void Expect(FED_FileDatabase& database, std::uint64_t number) {
    EXPECT_EQ(FindDifference(database, number), "");
  }

  FileSystem& m_Files;
  TemporaryDirectory m_Directory;
  std::string m_Path = m_Directory / "database";
  std::unique_ptr<FED_FileDatabase> m_Writer, m_Reader;
  std::uint64_t m_Saved = 0;
  std::uint64_t m_Begun = 0;
  bool m_IsSaving = false;
  bool m_IsBroken = false;
};

class FaultSweep : public testing::Test {
 protected:
  FaultSweep() {
    FED_LogMacros::SetSink([](auto...) {}, nullptr);
  }
  ~FaultSweep() override { FED_LogMacros::SetSink(nullptr, nullptr); }

  // `Failing` makes allocations fail while it lives, from the given one on.
  template <class Failing>
  static void SweepMemory() {
    const std::size_t step = ChooseCount(97, 1);
    bool hasFailed = true;
    std::size_t n = 0;
    for (; hasFailed && !HasFailure(); n += step) {
      SCOPED_TRACE("allocation " + std::to_string(n));
      UnsyncedFiles files;
      Life life(files);
      {
        const Failing failing(n);
        life.Live();
        hasFailed = failing.HasFailed();
      }
      life.End(Afterwards::WORKS);
    }
    RecordProperty("allocations", static_cast<int>(n));
  }

  static void SweepFiles(FileOperation kind, bool lasts) {
    SCOPED_TRACE("operations of kind " + std::to_string(static_cast<int>(kind)));
    const bool isSync = kind == FileOperation::SYNC || kind == FileOperation::SYNC_DIRECTORY;
    const auto afterwards = isSync  ? Afterwards::REFUSES
                            : lasts ? Afterwards::ANYTHING
                                    : Afterwards::WORKS;
    const std::size_t step = ChooseCount(7, 1);
    const std::uint64_t count = CountOperations(kind);
    for (std::uint64_t n = 0; n < count && !HasFailure(); n += step) {
      SCOPED_TRACE("operation " + std::to_string(n));
      UnsyncedFiles unsynced;
      FaultyFiles files(unsynced);
      Life life(files);
      files.SetFault({n, n % 2 == 0 ? IoProblem::OTHER : IoProblem::NO_SPACE, lasts, {kind}});
      life.Live();
      if (!lasts) files.ClearFault();
      life.End(afterwards);
      EXPECT_GT(files.GetFailures(), 0U);
    }
  }

  static std::uint64_t CountOperations(FileOperation kind) {
    UnsyncedFiles unsynced;
    FaultyFiles files(unsynced);
    Life(files).Live();
    EXPECT_LE(files.GetCount(), 2000U);
    return files.GetCount(kind);
  }

  static void SweepFiles(bool lasts) {
    for (int kind = 0; kind <= static_cast<int>(FileOperation::LOOK); ++kind) {
      SweepFiles(static_cast<FileOperation>(kind), lasts);
    }
  }
};

TEST_F(FaultSweep, OperationsFailOnce) { SweepFiles(false); }

TEST_F(FaultSweep, OperationsFailFromThenOn) {
  if (!AreTestsLong()) GTEST_SKIP() << "QELTA_LONG_TESTS is not set";
  SweepFiles(true);
}

TEST_F(FaultSweep, AllocationsFail) { SweepMemory<FailingAllocation>(); }

TEST_F(FaultSweep, AllocationsOfTheCatalogueFail) { SweepMemory<FailingSqliteMemory>(); }

}  // namespace
}  // namespace qelta::test
