// Bytes that change and files that end early: a failure, or the right data.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "ChildProcess.h"
#include "FED_Failure.h"
#include "MaintenanceKit.h"
#include "TemporaryDirectory.h"
#include "durability/LongTests.h"
#include "durability/UnsyncedFiles.h"

namespace qelta::test {
namespace {

constexpr unsigned kLast = 4;

using Change = void (*)(std::string& bytes, std::mt19937& random);

// Half of them where something stands.
void Flip(std::string& bytes, std::mt19937& random) {
  std::size_t at = random() % bytes.size();
  if (random() % 2 == 0) {
    while (bytes[at] == '\0') at = random() % bytes.size();
  }
  bytes[at] = static_cast<char>(bytes[at] ^ static_cast<char>(1 + random() % 255));
}

void Cut(std::string& bytes, std::mt19937& random) { bytes.resize(random() % bytes.size()); }

void ChangeAndSave(FED_FileDatabase& database, unsigned number) {
  if (number == 1) MakeWorld(database);
  Fill(database.GetDataBlock(LabelKey("spread")), {number, 70000}, number);
  Fill(database.GetDataBlock(CustomKey(1)), {4, 200 * number}, number);
  database.CreateDataBlock(CustomKey(10 + static_cast<int>(number)), 0, 0, "I|d");
  database.GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfIdForWrite(100 - static_cast<int>(number));
  database.Save();
}

class Damaged : public testing::Test {
 protected:
  void MakeSaves(const std::string& path, unsigned first, unsigned last) {
    const auto writer = Open(path, FED_DatabaseDefs::READ_WRITE);
    for (unsigned number = first; number <= last; ++number) {
      ChangeAndSave(*writer, number);
      texts[number] = ContentOf(*writer);
    }
  }

  /// Whether the copy can be read: it holds the last save then, or at least the save `least`.
  bool IsReadable(FED_DatabaseDefs::AccessMode mode, unsigned least) {
    std::size_t problems = 1;
    try {
      const auto database = Open(copy, mode, files);
      problems = database->Verify().problems.size();
      const std::string found = ContentOf(*database);
      EXPECT_TRUE(found == texts[kLast] || found == texts[least]);
      return true;
    } catch (const FED_Failure& failure) {
      EXPECT_NE(failure.GetMessageText(), "");
      EXPECT_GT(problems, 0u) << "not found before: " << failure.GetMessageText();
      return false;
    }
  }

  void Sweep(const std::string& file, Change change, std::size_t count, unsigned least) {
    const std::string bytes = ReadFile(original + "/" + file);
    std::mt19937 random(4711);
    std::size_t failures = 0;
    for (std::size_t i = 0; i < count && !HasFailure(); ++i) {
      SCOPED_TRACE(file + ", case " + std::to_string(i));
      std::string damaged = bytes;
      change(damaged, random);
      CopyFiles(original, copy);
      WriteFile(copy + "/" + file, damaged);
      const auto mode = i % 2 == 0 ? FED_DatabaseDefs::READ_ONLY : FED_DatabaseDefs::READ_WRITE;
      if (!IsReadable(mode, least)) ++failures;
    }
    std::printf("%s: %zu of %zu fail\n", file.c_str(), failures, count);
    EXPECT_GT(failures, 0u);
  }

  UnsyncedFiles files;
  TemporaryDirectory directory;
  const std::string original = directory / "original";
  const std::string copy = directory / "copy";
  std::string texts[kLast + 1];
};

TEST_F(Damaged, FilesFailOrDoNotMatter) {
  MakeSaves(original, 1, kLast);
  for (const char* const file : {"payload-1.qd", "catalogue.sqlite"}) {
    Sweep(file, Flip, ChooseCount(100, 1000), kLast);
    Sweep(file, Cut, ChooseCount(30, 100), kLast);
  }
}

// The last save may be lost as long as only the log knows of it, no other.
TEST_F(Damaged, LogsFailOrCostTheLastSave) {
  MakeSaves(original, 1, kLast - 2);
  CopyFiles(original, copy);
  MakeSaves(copy, kLast - 1, kLast);
  ASSERT_TRUE(HoldsInChild([&] {
    const auto writer = Open(original, FED_DatabaseDefs::READ_WRITE);
    for (unsigned number = kLast - 1; number <= kLast; ++number) ChangeAndSave(*writer, number);
    _exit(0);
    return true;
  }));
  CopyFiles(original, copy);
  const std::uint64_t generation = Open(copy)->GetGeneration();
  const std::size_t count = ChooseCount(40, 500);
  for (const Change change : {Flip, Cut}) Sweep("catalogue.sqlite-wal", change, count, kLast);
  std::string payload = ReadFile(original + "/payload-1.qd");
  payload.replace(generation % 2 == 0 ? 4096 : 8192, 16, 16, '\0');
  WriteFile(original + "/payload-1.qd", payload);
  for (const Change change : {Flip, Cut}) Sweep("catalogue.sqlite-wal", change, count, kLast - 1);
}

}  // namespace
}  // namespace qelta::test
