// What a program does by mistake, or in a place of its own, must not harm what is stored.

#include <gtest/gtest.h>

#include "Child.h"
#include "FaultyFiles.h"
#include "MaintenanceKit.h"
#include "TemporaryDirectory.h"

namespace qelta::test {
namespace {

constexpr auto kCreate = FED_DatabaseDefs::CREATE;
constexpr auto kReadWrite = FED_DatabaseDefs::READ_WRITE;

FED_DataDescriptor Labelled(const std::string& label) {
  FED_DataDescriptor key;
  key.SetString(FED_DataDescriptor::LABEL, label);
  return key;
}

FED_DataBlock& Make(FED_Database& database, const std::string& label, double value) {
  FED_DataBlock& block = database.CreateDataBlock(Labelled(label), 0, 0, "I|d");
  block.SetScalar(0, value);
  return block;
}

double ReadBack(const std::string& path, const std::string& label) {
  return Open(path)->GetDataBlock(Labelled(label)).GetScalar(0);
}

TEST(Misuse, AChangeOfDirectoryMattersToNobody) {
  const TemporaryDirectory place;
  const auto home = std::filesystem::current_path();
  for (const char* folder : {"a", "b"}) {
    std::filesystem::create_directory(place / folder);
    const auto database = Open(place / folder + "/db", kCreate);
    Make(*database, "x", folder[0]);
    database->Save();
  }
  std::filesystem::current_path(place / "a");
  {
    const auto database = Open("db", kReadWrite);
    std::filesystem::current_path(place / "b");
    database->GetDataBlock(Labelled("x")).SetScalar(0, 1.5);
    EXPECT_TRUE(database->Compact());
    EXPECT_TRUE(database->Verify().problems.empty());
  }
  std::filesystem::current_path(home);
  EXPECT_EQ(ReadBack(place / "a/db", "x"), 1.5);
  EXPECT_EQ(ReadBack(place / "b/db", "x"), 'b');
}

TEST(Misuse, ABlockThatIsRefusedLeavesOthersAlone) {
  const TemporaryDirectory place;
  {
    const auto database = Open(place / "db", kCreate);
    Make(*database, "abc", 7);
    database->Save();
    const std::string alike("abc\0x", 5);
    EXPECT_THROW(Make(*database, alike, 8), FED_Failure);
    database->GetDataBlock(Labelled("abc")).SetScalar(1, 9);
    database->Save();
  }
  EXPECT_EQ(ReadBack(place / "db", "abc"), 7);
}

TEST(Misuse, NothingIsMadeAfterAFailedSyncOrInAFork) {
  const TemporaryDirectory place;
  FaultyFiles files(SystemFiles());
  const auto database = Open(place / "db", kCreate, files);
  Make(*database, "x", 7);
  Child child([&](auto) {
    EXPECT_THROW(Make(*database, "y", 8), FED_Failure);
    return !database->HasBlock(Labelled("y"));
  });
  EXPECT_TRUE(child.EndsWell());
  files.SetFault({0, IoProblem::OTHER, true, {FileOperation::SYNC}});
  EXPECT_THROW(database->Save(), FED_Failure);
  EXPECT_THROW(Make(*database, "y", 8), FED_Failure);
  EXPECT_FALSE(database->HasBlock(Labelled("y")));
}

TEST(Misuse, ASaveInTheMiddleOfACompactionIsNotLost) {
  const TemporaryDirectory place;
  {
    const auto database = Open(place / "db", kCreate);
    FED_DataBlock& block = Make(*database, "x", 1);
    const auto save = [&](std::uint64_t, std::uint64_t) {
      block.SetScalar(0, 2);
      database->Save();
      return true;
    };
    EXPECT_THROW(database->Compact(save), FED_Failure);
    EXPECT_TRUE(database->Compact());
  }
  EXPECT_EQ(ReadBack(place / "db", "x"), 2);
}

}  // namespace
}  // namespace qelta::test
