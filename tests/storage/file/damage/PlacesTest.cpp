// Where a database may stand, who may open it, and what is left of it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <xxhash.h>

#include "BlockContents.h"
#include "Child.h"
#include "FED_LogMacros.h"
#include "FailureMatcher.h"
#include "LittleEndian.h"
#include "QeltaStringUtil.h"
#include "Saves.h"
#include "SqliteConnection.h"
#include "TemporaryDirectory.h"

namespace qelta::test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
constexpr std::uint64_t kLast = 3;
constexpr char kHeld[] = "is open for writing: process ";
using Mode = FED_DatabaseDefs::AccessMode;
constexpr Mode kReadOnly = FED_DatabaseDefs::READ_ONLY;
constexpr Mode kReadWrite = FED_DatabaseDefs::READ_WRITE;
constexpr Mode kCreate = FED_DatabaseDefs::CREATE;
const std::vector<Mode> kAll = {kReadOnly, kReadWrite, kCreate};

class Places : public testing::Test {
 protected:
  Places() {
    FED_LogMacros::SetSink(
        [](void* lines, FED_LogMacros::LogMsgType, const char*, int, const char*,
           const char* text) { static_cast<std::string*>(lines)->append(text) += '\n'; },
        &log);
  }
  ~Places() override { FED_LogMacros::SetSink(nullptr, nullptr); }

  static void ExpectWhole(const std::string& place) { EXPECT_EQ(FindDifference(place, kLast), ""); }

  static std::string FailToOpen(const std::string& place, Mode mode) {
    return CatchFailure([&] { Open(place, mode); }).GetMessageText();
  }

  auto CountFiles() const {
    return std::distance(std::filesystem::recursive_directory_iterator(directory.GetPath()), {});
  }

  /// Opening must fail and leave all as it is.
  void Refuse(const std::string& place, const std::vector<Mode>& modes, const std::string& reason) {
    for (const Mode mode : modes) {
      const auto before = CountFiles();
      EXPECT_THAT(FailToOpen(place, mode), HasSubstr(reason)) << place << ", mode " << mode;
      EXPECT_EQ(CountFiles(), before) << place << ", mode " << mode;
    }
  }

  /// Does to the catalogue what only another program does.
  void Execute(const char* sql) {
    SqliteConnection(SystemFiles(), path + "/catalogue.sqlite", SqliteConnection::Mode::WRITE)
        .Execute(sql);
  }

  TemporaryDirectory directory;
  const std::string path = directory / "db";
  std::string log;
};

TEST_F(Places, ThatAreNoneAreRefused) {
  WriteFile(directory / "file", "text");
  std::filesystem::create_directory(directory / "foreign");
  WriteFile(directory / "foreign/notes.txt", "text");
  Refuse("", kAll, "empty");
  Refuse(directory / "file", kAll, "/file is a file");
  Refuse(directory / "foreign", kAll, "it holds 'notes.txt'");
  Refuse(directory / "absent/db", {kReadWrite, kCreate}, "absent/db");
  Refuse(path, {kReadOnly}, "There is no database " + path);
  std::filesystem::create_directory(path);
  Refuse(path, {kReadOnly}, "There is no database " + path);
}

TEST_F(Places, WithADatabaseOfAnotherVersionOrProgramAreRefused) {
  SaveUpTo(kLast, path);
  WriteFile(path + "/notes.txt", "text");
  Refuse(path, {kCreate}, "it holds 'notes.txt'");
  ExpectWhole(path);
  std::filesystem::remove(path + "/notes.txt");
  Execute("PRAGMA user_version=2");
  Refuse(path, kAll, "newer version");
  Execute("PRAGMA user_version=1; PRAGMA application_id=7");
  Refuse(path, kAll, "no catalogue of a database");
  Execute("PRAGMA application_id=0x51656C74");
  std::string newer = ReadFile(path + "/payload-1.qd");
  newer[8] = 2;
  PutNumber(reinterpret_cast<unsigned char*>(&newer[32]), XXH3_64bits(newer.data(), 32), 8);
  WriteFile(path + "/payload-1.qd", newer);
  Refuse(path, kAll, "newer version");
}

// Characters of several bytes, and more of them than older systems let a path have.
TEST_F(Places, MayHaveAnyName) {
  std::string deep = directory.GetPath();
  for (int i = 0; i < 4; ++i) {
    deep += '/' + std::string(60, static_cast<char>('a' + i)) + " \xC3\xA4\xE2\x82\xAC";
    SystemFiles().MakeDirectory(deep);
  }
  const std::string place = deep + "/a b%20#\xE6\x97\xA5", copy = deep + "/copy\xC3\xA9";
  for (std::uint64_t last = 1; last <= kLast; ++last) SaveUpTo(last, place);
  EXPECT_EQ(FindDifference(*Open(place), kLast), "");
  const auto database = Open(place, kReadWrite);
  std::wstring wide;
  ASSERT_TRUE(QeltaStringUtil::ToWide(copy, wide));
  database->Backup(wide);
  EXPECT_TRUE(database->Compact());
  ExpectWhole(copy);
  EXPECT_THAT(database->Verify().problems, testing::IsEmpty());
}

TEST_F(Places, HaveOneWriterWhoSaysWhereHeIs) {
  SaveUpTo(kLast, path);
  const auto writer = Open(path, kReadWrite);
  const std::string holder = kHeld + std::to_string(getpid()) + " on host ";
  Refuse(path, {kReadWrite, kCreate}, holder);
  EXPECT_TRUE(HoldsInChild([&] {
    Refuse(path, {kReadWrite, kCreate}, holder);
    ExpectWhole(path);
    return !HasFailure();
  }));
}

TEST_F(Places, MayBeReadOnly) {
  SaveUpTo(kLast, path);
  const std::string killed = directory / "killed";
  CopyFiles(path, killed);
  ASSERT_TRUE(SaveAndDie(kLast + 1, killed));
  for (const std::string& place : {path, killed}) chmod(place.c_str(), 0555);
  EXPECT_TRUE(HoldsInChild([&] {
    if (!BecomeNobody()) return false;
    ExpectWhole(path);
    Refuse(path, {kReadWrite, kCreate}, path);
    try {
      EXPECT_EQ(FindDifference(killed, kLast + 1), "");
    } catch (const FED_Failure& failure) {
      EXPECT_THAT(failure.what(), HasSubstr("Open the database once for writing"));
    }
    return !HasFailure();
  }));
  for (const std::string& place : {path, killed}) chmod(place.c_str(), 0755);
}

TEST_F(Places, StayAsTheyAreUntilTheFirstSaveOfWhoStartsAnew) {
  SaveUpTo(kLast, path);
  const auto reader = Open(path);
  for (const bool saves : {false, true}) {
    const auto fresh = Open(path, kCreate);
    EXPECT_EQ(FindDifference(*fresh, 0), "");
    MakeCheckpoint(*fresh, 1);
    ExpectWhole(path);
    if (saves) fresh->Save();
  }
  EXPECT_THAT(log, HasSubstr("closed without a save: changes to "));
  EXPECT_EQ(FindDifference(*reader, kLast), "");
  EXPECT_EQ(FindDifference(path, 1), "");
}

TEST_F(Places, OfDamagedDatabasesAreClearedByRenaming) {
  SaveUpTo(kLast, path);
  const std::string catalogue = ReadFile(path + "/catalogue.sqlite");
  for (int number = 1; number <= 2; ++number) {
    WriteFile(path + "/catalogue.sqlite", catalogue.substr(0, 40000));
    Open(path, kCreate)->Save();
    const std::string aside = path + ".damaged-" + std::to_string(number);
    EXPECT_THAT(log, HasSubstr(aside));
    EXPECT_EQ(ReadFile(aside + "/catalogue.sqlite").size(), 40000u);
    EXPECT_EQ(FindDifference(path, 0), "");
  }
  WriteFile(path + ".damaged-1/catalogue.sqlite", catalogue);
  ExpectWhole(path + ".damaged-1");
}

TEST_F(Places, AreOutOfReachOfAFork) {
  SaveUpTo(1, path);
  auto writer = Open(path, kReadWrite);
  FED_DataBlock& block = writer->GetDataBlock(CustomKey(2));
  MakeCheckpoint(*writer, 2);
  const std::vector<std::function<void()>> operations = {
      [&] { block.GetScalar(0); },
      [&] { block.SetScalar(0, 2); },
      [&] { block.HasRecord(0); },
      [&] { writer->GetDataBlock(CustomKey(4)); },
      [&] { writer->CreateDataBlock(CustomKey(99), 0, 0, "I|d"); },
      [&] { writer->DeleteDataBlock(CustomKey(2)); },
      [&] { writer->Save(); },
      [&] { writer->Refresh(); },
      [&] { writer->Verify(); },
      [&] { writer->Compact(); },
      [&] { writer->Backup(L"/none/copy"); },
      [&] { writer->Salvage(L"/none/copy"); },
      [&] { Open(path, kReadWrite); }};
  const auto refused = AnyOf(HasSubstr("a fork of the one that opened it"), HasSubstr(kHeld));
  Child fork([&](const auto& signal) {
    for (std::size_t i = 0; i < operations.size(); ++i) {
      EXPECT_THAT(CatchFailure(operations[i]).GetMessageText(), refused) << "operation " << i;
    }
    writer.reset();
    if (HasFailure()) return false;
    signal();
    return WaitForEver();
  });
  ASSERT_TRUE(fork.AwaitSignal());
  EXPECT_THAT(FailToOpen(path, kReadWrite), HasSubstr(kHeld));
  EXPECT_EQ(FindDifference(*writer, 2), "");
  writer->Save();
  writer.reset();
  EXPECT_EQ(FindDifference(*Open(path, kReadWrite), 2), "");
}

TEST_F(Places, MayHoldBlocksOfKindsThatAreUnknownHere) {
  const auto giveFirst = [this](const std::string& format) {
    Rewrite(path, [&](CommitRows& rows) { rows.blocks[0].format = format; });
  };
  for (const bool isCustom : {true, false}) {
    auto writer = Open(path, kCreate);
    FED_DataBlock& first = isCustom ? writer->CreateDataBlock(LabelKey("first"), 3, 0, "I|VS")
                                    : writer->CreateDataBlock({1, ONF_NODE_GROUP}, 0);
    const std::string format = first.GetFormat();
    Fill(first, {1, 5}, 3);
    writer->CreateDataBlock(LabelKey("second"), 0, 0, "I|d").SetScalar(0, 2);
    writer->Save();
    const std::string right = ContentOf(*writer);
    writer.reset();
    giveFirst("I|?");
    log.clear();
    writer = Open(path, kReadWrite);
    EXPECT_THAT(log, HasSubstr("is left out: its kind, of format 'I|?'"));
    EXPECT_EQ(writer->FindBlocks(FED_DataDescriptorPattern()).size(), 1u);
    EXPECT_THAT(writer->Verify().problems, testing::ElementsAre(HasSubstr("'I|?'")));
    for (const double value : {1, 2}) {
      writer->GetDataBlock(LabelKey("second")).SetScalar(0, value);
      writer->Save();
    }
    writer.reset();
    giveFirst(format);
    EXPECT_EQ(ContentOf(path), right);
  }
}

}  // namespace
}  // namespace qelta::test
