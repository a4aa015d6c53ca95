// Readers in other processes, and some that stay where they are, beside a writer that goes on.

#include <gtest/gtest.h>

#include "BlockContents.h"
#include "Child.h"
#include "FED_Failure.h"
#include "FED_RecordRuns.h"
#include "Saves.h"
#include "TemporaryDirectory.h"
#include "durability/LongTests.h"

namespace qelta::test {
namespace {

class Readers : public testing::Test {
 protected:
  Readers() : writer(Open(path, FED_DatabaseDefs::CREATE)) {}

  TemporaryDirectory directory;
  const std::string path = directory / "db";
  std::unique_ptr<FED_FileDatabase> writer;
};

TEST_F(Readers, SeeOneSaveEach) {
  const std::uint64_t last = ChooseCount(60, 500);
  const auto readUntilLast = [&](const auto& signal, bool reopens) {
    auto reader = Open(path);
    signal();
    for (std::uint64_t seen = 0, next = 0; seen < last; seen = next) {
      if (reopens) reader = Open(path);
      reader->Refresh();
      next = ReadNumber(*reader);
      if (next < seen || !FindDifference(*reader, next).empty()) return false;
    }
    return true;
  };
  Child refreshing([&](const auto& signal) { return readUntilLast(signal, false); });
  Child reopening([&](const auto& signal) { return readUntilLast(signal, true); });
  ASSERT_TRUE(refreshing.AwaitSignal() && reopening.AwaitSignal());
  SaveUpTo(last, *writer);
  EXPECT_TRUE(refreshing.EndsWell());
  EXPECT_TRUE(reopening.EndsWell());
}

TEST_F(Readers, GoToTheNewSaveOrStayWhereTheyAre) {
  const auto change = [&](std::int32_t id) {
    for (const FED_IdType type : {ID_TYPE_NODE, ID_TYPE_ELEMENT}) {
      writer->GetIdMapsPool().GetMap(type).IndexOfIdForWrite(id);
    }
    writer->FetchDataBlock(LabelKey("both"), 0, 0, "I|d").SetScalar(0, id);
    FED_DataDescriptor alias = LabelKey(id == 1 ? "changing" : "gone");
    FED_DataBlock& block =
        writer->CreateDataBlock(LabelKey(id == 1 ? "gone" : "changing"), 0, 0, "I|d");
    block.SetScalar(0, 10 + id);
    writer->CreateDataBlockAlias(LabelKey("both"), alias);
    writer->Save();
  };
  change(1);
  const auto reader = Open(path);
  const std::string before = ContentOf(*reader);
  FED_DataBlock& block = reader->GetDataBlock(LabelKey("both"));
  for (const char* label : {"both", "gone"}) writer->DeleteDataBlock(LabelKey(label));
  writer->Save();
  change(2);
  std::vector<StoredChunk> chunks;
  UnpackChunks(RowsOf(path).idMaps[1].chunks, chunks);
  FlipByte(PayloadOf(path), chunks[0].extent.offset);
  EXPECT_THROW(reader->Refresh(), FED_Failure);
  EXPECT_EQ(block.GetScalar(0), 1);  // it is still open
  EXPECT_EQ(ContentOf(*reader), before);
  FlipByte(PayloadOf(path), chunks[0].extent.offset);
  EXPECT_TRUE(reader->Refresh());
  EXPECT_EQ(ContentOf(*reader), ContentOf(path));
  EXPECT_NE(ContentOf(path), before);
  writer.reset();
  writer = Open(path, FED_DatabaseDefs::CREATE);
  writer->CreateDataBlock(LabelKey("new"), 0, 0, "I|d").SetScalar(0, 3);
  writer->Save();
  EXPECT_TRUE(reader->Refresh());
  EXPECT_EQ(ContentOf(*reader), ContentOf(path));
}

constexpr std::size_t kRecords = 200000;

class IdleReaders : public Readers {
 protected:
  /// Overwrites all records by the number of the save. Gives how many times the payload has room
  /// for all.
  double SaveSome(std::size_t count) {
    FED_DataBlock& block = writer->FetchDataBlock(LabelKey("all"), 0, 0, "I|d");
    for (; count > 0; --count) {
      const std::vector<double> values(kRecords, ++number);
      dynamic_cast<FED_RecordRuns&>(block).WriteRun(0, kRecords, values.data());
      writer->Save();
    }
    return static_cast<double>(std::filesystem::file_size(path + "/payload-1.qd")) / 8 / kRecords;
  }

  static void Expect(FED_FileDatabase& reader, int number) {
    EXPECT_EQ(reader.GetDataBlock(LabelKey("all")).GetFieldData(),
              std::vector<double>(kRecords, number));
  }

  int number = 0;
};

TEST_F(IdleReaders, HoldWhatTheySeeAndNothingElse) {
  EXPECT_LT(SaveSome(4), 2.1);
  const auto idle = Open(path);
  EXPECT_LT(SaveSome(ChooseCount(30, 300)), 3.1);
  Expect(*idle, 4);
  Child killed([&](const auto& signal) {
    const auto reader = Open(path);
    signal();
    return WaitForEver();
  });
  ASSERT_TRUE(killed.AwaitSignal());
  EXPECT_GT(SaveSome(3), 3.9);
  killed.Kill();
  const auto other = Open(path);
  const int seen = number;
  EXPECT_LT(SaveSome(5), 4.1);
  Expect(*idle, 4);
  EXPECT_TRUE(idle->Refresh());
  Expect(*idle, number);
  EXPECT_FALSE(idle->Refresh());
  Expect(*other, seen);
}

}  // namespace
}  // namespace qelta::test
