// The long work on a whole database: verify, salvage, compact, back up, drop what nobody refers to.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CatalogueRows.h"
#include "FED_OnfInfoPool.h"
#include "FED_RecordRuns.h"
#include "FailureMatcher.h"
#include "FaultyFiles.h"
#include "MaintenanceKit.h"
#include "SqliteConnection.h"
#include "TemporaryDirectory.h"
#include "durability/LongTests.h"

namespace qelta::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Fresh each time: descriptors remember where their block was.
FED_DataDescriptor Numbers() { return {1, ONF_TEMPERATURE}; }  // 100000 of them, four chunks
FED_DataDescriptor Sparse() { return CustomKey(2); }           // every third record
FED_DataDescriptor Texts() { return CustomKey(3); }  // a text of 1000 bytes and a list each
constexpr std::size_t kPerChunk = 32768;

FED_RecordRuns& RunsOf(FED_DataBlock& block) { return dynamic_cast<FED_RecordRuns&>(block); }

struct TextRecord {
  std::uint32_t text;
  std::uint32_t list;
};

void WriteText(FED_DataBlock& block, std::size_t index) {
  const int list[] = {static_cast<int>(index), 7};
  const TextRecord record = {
      static_cast<std::uint32_t>(block.SetString(std::string(1000, static_cast<char>(index)))),
      static_cast<std::uint32_t>(block.SetIntList(list, 2))};
  RunsOf(block).WriteRun(index, 1, &record);
}

std::string TextAt(FED_DataBlock& block, std::size_t index) {
  TextRecord record{};
  RunsOf(block).ReadRun(index, 1, &record);
  std::string text;
  block.GetString(record.text, text);
  return text;
}

class MaintenanceTest : public testing::Test {
 protected:
  MaintenanceTest() {
    auto database = Open(path, FED_DatabaseDefs::CREATE);
    MakeWorld(*database);
    std::vector<double> numbers(100000);
    for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<double>(i);
    RunsOf(database->CreateDataBlock(Numbers(), 0)).WriteRun(0, numbers.size(), numbers.data());
    FED_DataBlock& sparse = database->CreateDataBlock(Sparse(), 0, 0, "I|d");
    for (std::size_t i = 2; i < 9000; i += 3) sparse.SetScalar(i, static_cast<double>(i));
    FED_DataBlock& texts = database->CreateDataBlock(Texts(), 5, 0, "I|SL");
    for (std::size_t i = 0; i < 600; ++i) WriteText(texts, i);
    FED_DataDescriptor alias = LabelKey("texts");
    database->CreateDataBlockAlias(Texts(), alias);
    database->GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfIdForWrite(4711);
    database->Save();
  }

  FED_FileDatabase::Report Salvage(const std::string& target) const {
    return FED_FileDatabase::Salvage(Wide(path), Wide(target));
  }
  static std::wstring Wide(const std::string& text) { return {text.begin(), text.end()}; }

  TemporaryDirectory directory;
  const std::string path = directory / "db";
  const std::string copy = directory / "copy";
};

void Sql(const std::string& path, const std::string& statement) {
  SqliteConnection(SystemFiles(), path + "/catalogue.sqlite", SqliteConnection::Mode::WRITE)
      .Execute(statement.c_str());
}

using Plant = std::function<void(const std::string& path)>;

Plant Flip(const FED_DataDescriptor& key, Part part, std::uint32_t number) {
  return [=](const std::string& at) { FlipChunk(at, key, part, number); };
}
Plant FlipHeader(std::uint64_t offset) {
  return [=](const std::string& at) { FlipByte(PayloadOf(at), offset); };
}
Plant Change(const FED_DataDescriptor& key, void (*change)(BlockRow&)) {
  return [=](const std::string& at) {
    Rewrite(at, [&](CommitRows& rows) { change(RowOf(rows, key)); });
  };
}
Plant Update(const char* statement) {
  return [=](const std::string& at) { Sql(at, statement); };
}
void CutTail(const std::string& at) {
  std::filesystem::resize_file(PayloadOf(at), std::filesystem::file_size(PayloadOf(at)) - 10);
}
void ClaimTwice(BlockRow& row) { row.chunks.replace(8, 24, row.chunks, 40, 24); }

TEST_F(MaintenanceTest, VerifyFindsEveryKindOfDamageAndNothingElse) {
  const std::pair<std::string, Plant> plants[] = {
      {Numbers().ToString() + ": chunk 3 of its records", Flip(Numbers(), Part::RECORDS, 3)},
      {"chunk 0 of its index of records", Flip(Sparse(), Part::PRESENCE, 0)},
      {"chunk 0 of its list of strings and lists", Flip(Texts(), Part::HANDLES, 0)},
      {"chunk 1 of its strings and lists", Flip(Texts(), Part::CONTENTS, 1)},
      {"the file ends before it", CutTail},
      {"no valid header", FlipHeader(0)},
      {"counts the saves", FlipHeader(4096)},
      {"row 2 of the table blocks", Update("UPDATE blocks SET span = 7 WHERE id = 2")},
      {"columns for queries", Update("UPDATE blocks SET onf = 7 WHERE id = 2")},
      {"3000 records", Change(Sparse(), [](BlockRow& row) { --row.records; })},
      {"records lie outside", Change(Numbers(), [](BlockRow& row) { row.records = ++row.span; })},
      {"list 1200", Change(Texts(), [](BlockRow& row) { --row.contentBytes; })},
      {"claimed by", Change(Numbers(), ClaimTwice)},
      {"has a chunk twice", Change(Numbers(), [](BlockRow& row) { row.chunks += row.chunks; })},
      {"no damage", Change(Numbers(), [](BlockRow& row) { row.format = "I|Z"; })}};
  EXPECT_THAT(Open(path)->Verify().problems, IsEmpty());
  for (const auto& [expected, plant] : plants) {
    CopyFiles(path, copy);
    const auto database = Open(copy);  // what is open may be damaged later
    plant(copy);
    EXPECT_THAT(database->Verify().problems, testing::Contains(HasSubstr(expected)));
  }
}

TEST_F(MaintenanceTest, VerifyLooksAtWhatWasSaved) {
  const auto writer = Open(path, FED_DatabaseDefs::READ_WRITE);
  writer->GetDataBlock(Sparse()).SetScalar(1, 1);
  std::uint64_t last = 0;
  const auto report = writer->Verify([&](std::uint64_t done, std::uint64_t total) {
    EXPECT_LE(done, total);
    last = total;
    return true;
  });
  EXPECT_THAT(report.problems, IsEmpty());
  EXPECT_TRUE(report.isComplete);
  EXPECT_EQ(report.bytes, last);
  EXPECT_FALSE(writer->Verify([](auto...) { return false; }).isComplete);
}

TEST_F(MaintenanceTest, SalvageCopiesAllOfASoundDatabase) {
  EXPECT_THAT(Salvage(copy).problems, IsEmpty());
  EXPECT_EQ(ContentOf(copy), ContentOf(path));
  EXPECT_THAT(Open(copy)->Verify().problems, IsEmpty());
  EXPECT_THAT(CatchFailure([&] { Salvage(copy); }).GetMessageText(), HasSubstr("exists"));
}

TEST_F(MaintenanceTest, SalvageCopiesWhatIsIntact) {
  const std::string right = ContentOf(path);
  FlipChunk(path, Numbers(), Part::RECORDS, 1);
  FlipChunk(path, Texts(), Part::CONTENTS, 1);
  FlipChunk(path, Sparse(), Part::PRESENCE);
  FlipByte(PayloadOf(path), 0);
  EXPECT_THAT(
      Salvage(copy).problems,
      ElementsAre(AllOf(HasSubstr(Numbers().ToString()), HasSubstr("32768 to 65535 are lost")),
                  HasSubstr("which of the records 0 to 8999 are there cannot be told"),
                  HasSubstr("some of its strings"), HasSubstr("first one in record 260")));
  const auto salvaged = Open(copy);
  FED_DataBlock& numbers = salvaged->GetDataBlock(Numbers());
  for (std::size_t i = 0; i < 100000; ++i) {
    const bool isLost = i / kPerChunk == 1;
    ASSERT_EQ(numbers.HasRecord(i), !isLost) << i;
    if (isLost) continue;
    ASSERT_EQ(numbers.GetScalar(i), static_cast<double>(i));
  }
  FED_DataBlock& texts = salvaged->GetDataBlock(LabelKey("texts"));
  EXPECT_EQ(TextAt(texts, 0), std::string(1000, '\0'));
  EXPECT_EQ(TextAt(texts, 300), "");
  EXPECT_EQ(TextAt(texts, 599), std::string(1000, static_cast<char>(599)));
  EXPECT_EQ(salvaged->GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfId(4711), 0);
  EXPECT_EQ(salvaged->GetDataBlock(Sparse()).GetMaxIndex(), -1);
  EXPECT_THAT(salvaged->Verify().problems, IsEmpty());
}

TEST_F(MaintenanceTest, SalvageDoesWithoutRowsAndTails) {
  std::string file = ReadFile(PayloadOf(path));
  WriteFile(PayloadOf(path), file.substr(0, ChunkOf(path, Texts(), Part::RECORDS).extent.offset));
  Sql(path, "UPDATE meta SET payload = 'nothing'");
  Sql(path, "UPDATE blocks SET records = 5 WHERE onf = " + std::to_string(ONF_TEMPERATURE));
  EXPECT_THROW(Open(path), FED_Failure);
  const auto problems = Salvage(copy).problems;
  EXPECT_THAT(problems, testing::Contains(HasSubstr("table meta")));
  EXPECT_THAT(problems, testing::Contains(HasSubstr("the file ends before it")));
  const auto salvaged = Open(copy);
  EXPECT_FALSE(salvaged->HasBlock(Numbers()));
  EXPECT_EQ(salvaged->GetDataBlock(Sparse()).GetScalar(8999), 8999);
  EXPECT_FALSE(salvaged->GetDataBlock(Texts()).HasRecord(0));
}

TEST_F(MaintenanceTest, SalvageGoesOnAfterEntriesThatCannotBe) {
  Rewrite(path, [](CommitRows& rows) {
    rows.blocks.push_back(RowOf(rows, Sparse()));
    rows.blocks.back().key = EncodeKey(CustomKey(-5));
  });
  BlockRow old;  // as on a page that was written before
  old.key = EncodeKey(Sparse());
  old.format = "I|d";
  Sql(path,
      "PRAGMA writable_schema = ON;"
      "UPDATE sqlite_master SET sql = replace(sql, 'NOT NULL UNIQUE', 'NOT NULL')"
      " WHERE name = 'blocks';"
      "DELETE FROM sqlite_master WHERE name LIKE 'sqlite_autoindex_blocks%'");
  const auto hash = static_cast<std::int64_t>(RowHasher().Hash(0, old));
  Sql(path,
      "INSERT INTO blocks(id, key, format, properties, records, span, handles,"
      " content_bytes, chunks, hash) SELECT 0, key, format, 0, 0, 0, 0, 0, x'', " +
          std::to_string(hash) + " FROM blocks WHERE iteration = 2 AND span = 9000");
  const auto problems = Salvage(copy).problems;
  EXPECT_THAT(problems, testing::Contains(HasSubstr(Sparse().ToString() + ": an old entry")));
  EXPECT_THAT(problems, testing::Contains(HasSubstr(CustomKey(-5).ToString() + ": it, or a part")));
  EXPECT_EQ(Open(copy)->GetDataBlock(Sparse()).GetScalar(8999), 8999);
}

TEST_F(MaintenanceTest, CompactGivesSpaceBackAndKeepsWhatReadersSee) {
  auto writer = Open(path, FED_DatabaseDefs::READ_WRITE);
  const auto before = ContentOf(*writer);
  const auto reader = Open(path);
  EXPECT_FALSE(writer->Compact([](auto...) { return false; }));
  EXPECT_EQ(DatabaseDirectory(SystemFiles(), path).ListPayloads().size(), 1u);
  writer->DeleteDataBlock(Numbers());
  FED_DataBlock& texts = writer->GetDataBlock(Texts());
  EXPECT_TRUE(writer->Compact());
  EXPECT_EQ(std::filesystem::file_size(PayloadOf(path)),
            std::filesystem::file_size(path + "/payload-1.qd") - 800000);
  WriteText(texts, 600);  // the block goes on
  writer->Save();
  EXPECT_EQ(TextAt(texts, 599), std::string(1000, static_cast<char>(599)));
  EXPECT_EQ(ContentOf(*reader), before);
  EXPECT_EQ(PayloadOf(path), path + "/payload-2.qd");
  EXPECT_TRUE(reader->Refresh());
  writer->GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfIdForWrite(12);
  EXPECT_TRUE(writer->Compact());
  EXPECT_EQ(ContentOf(*writer), ContentOf(path));
  const std::string after = ContentOf(*writer);
  writer->CloseDb();
  reader->CloseDb();
  writer = Open(path, FED_DatabaseDefs::READ_WRITE);
  EXPECT_THAT(DatabaseDirectory(SystemFiles(), path).ListPayloads(), ElementsAre("payload-3.qd"));
  EXPECT_EQ(ContentOf(*writer), after);
  EXPECT_THAT(writer->Verify().problems, IsEmpty());
}

TEST_F(MaintenanceTest, CompactTakesBlocksOfUnknownKindsAlong) {
  const std::string right = ContentOf(path);
  Change(Numbers(), [](BlockRow& row) { row.format = "I|Z"; })(path);
  EXPECT_TRUE(Open(path, FED_DatabaseDefs::READ_WRITE)->Compact());
  const std::string format = FED_OnfInfoPool::GetOnfInfo(ONF_TEMPERATURE).format;
  Rewrite(path, [&](CommitRows& rows) { RowOf(rows, Numbers()).format = format; });
  EXPECT_EQ(ContentOf(path), right);
}

// They belong to the block, which may be known to the next program.
TEST_F(MaintenanceTest, NamesOfBlocksOfUnknownKindsStay) {
  Change(Texts(), [](BlockRow& row) { row.format = "I|Z"; })(path);
  {
    const auto database = Open(path, FED_DatabaseDefs::READ_WRITE);
    for (const FED_DataDescriptor& key : {Texts(), LabelKey("texts")}) {
      EXPECT_THAT(CatchFailure([&] { database->CreateDataBlock(key, 0, 0, "I|d"); }).what(),
                  HasSubstr("does not know"));
    }
    for (const char* label : {"texts", "more"}) {
      FED_DataDescriptor alias = LabelKey(label);
      database->CreateDataBlockAlias(Sparse(), alias);
    }
    database->Save();
  }
  Change(Texts(), [](BlockRow& row) { row.format = "I|SL"; })(path);
  const auto database = Open(path);
  EXPECT_EQ(TextAt(database->GetDataBlock(LabelKey("texts")), 300),
            std::string(1000, static_cast<char>(300)));
  EXPECT_EQ(database->GetDataBlock(LabelKey("more")).GetScalar(8), 8);
}

template <class Row>
void ChangeChunk(Row& row, std::uint64_t offset, std::uint64_t length) {
  std::vector<StoredChunk> chunks;
  UnpackChunks(row.chunks, chunks);
  chunks[0].extent = {offset, length, 0};
  row.chunks = PackChunks(chunks);
}

TEST_F(MaintenanceTest, PlacesThatCannotBeAreDamageThatHarmsNothing) {
  constexpr std::uint64_t kMuch = std::uint64_t{1} << 62;
  const auto isDamage = [](const std::function<void()>& action, const char* text) {
    EXPECT_THAT(CatchFailure(action).GetMessageText(), HasSubstr(text));
  };
  CopyFiles(path, copy);
  Rewrite(copy, [&](CommitRows& rows) {
    ChangeChunk(rows.idMaps[0], 12288, rows.idMaps[0].bytes = kMuch);
  });
  isDamage([&] { Open(copy); }, "too long");
  const struct {
    void (*change)(BlockRow&);
    const char* byWriter;
    const char* byBackup;
  } cases[] = {{[](BlockRow& row) { ChangeChunk(row, 20000, kMuch); }, "outside", "no place"},
               {[](BlockRow& row) { ChangeChunk(row, ~0ull - 7, 16); }, "outside", "no place"},
               {[](BlockRow& row) { ChangeChunk(row, 0, 8); }, "outside", "no place"},
               {[](BlockRow& row) { row.chunks[0] = 6; }, "no sense", "no sense"}};
  for (const auto& [change, byWriter, byBackup] : cases) {
    CopyFiles(path, copy);
    Rewrite(copy, [&, change = change](CommitRows& rows) {
      RowOf(rows, Numbers()).format = "I|Z";  // so that nobody looks at it before
      change(RowOf(rows, Numbers()));
    });
    const auto database = Open(copy, FED_DatabaseDefs::READ_WRITE);
    isDamage([&] { database->GetDataBlock(Sparse()).SetScalar(2, 7); }, byWriter);
    isDamage([&] { database->Backup(Wide(directory / "backup")); }, byBackup);
  }
}

// Every operation of the system fails once, in the short form every third one.
TEST_F(MaintenanceTest, CompactThatFailsChangesNothing) {
  const std::string small = directory / "small";
  {
    const auto database = Open(small, FED_DatabaseDefs::CREATE);
    MakeWorld(*database);
    database->GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfIdForWrite(12);
    database->Save();
    WriteText(database->CreateDataBlock(Texts(), 0, 0, "I|SL"), 0);
    database->Save();
    WriteText(database->GetDataBlock(Texts()), 0);
    database->Save();
  }
  const std::string right = ContentOf(small);
  std::uint64_t count = 1;
  for (std::uint64_t i = 0; i < count; i += ChooseCount(3, 1)) {
    SCOPED_TRACE(i);
    CopyFiles(small, copy);
    FaultyFiles files(SystemFiles());
    {
      const auto opened = Open(copy, FED_DatabaseDefs::READ_WRITE, files);
      FED_FileDatabase& database = *opened;
      if (count == 1) {
        const std::uint64_t start = files.GetCount();
        ASSERT_TRUE(database.Compact());
        count = files.GetCount() - start;
        continue;
      }
      files.SetFault({i, IoProblem::OTHER, false, {}});
      bool fails = false;
      try {
        database.Compact();
      } catch (const FED_Failure&) {
        fails = true;
      }
      files.ClearFault();
      try {
        EXPECT_EQ(ContentOf(database), right);
        EXPECT_TRUE(database.Compact());
      } catch (const FED_Failure& failure) {
        EXPECT_TRUE(fails);
        EXPECT_THAT(failure.GetMessageText(), HasSubstr("sync"));
      }
    }
    const auto database = Open(copy, FED_DatabaseDefs::READ_WRITE);
    EXPECT_EQ(ContentOf(*database), right);
    EXPECT_THAT(database->Verify().problems, IsEmpty());
    EXPECT_EQ(DatabaseDirectory(SystemFiles(), copy).ListPayloads().size(), 1u);
  }
  EXPECT_GT(count, 50u);
}

TEST_F(MaintenanceTest, BackupIsOneSaveWhateverTheWriterDoes) {
  auto writer = Open(path, FED_DatabaseDefs::READ_WRITE);
  writer->GetDataBlock(Sparse()).SetScalar(5, -1);  // not saved
  EXPECT_FALSE(writer->Backup(Wide(copy), [](auto...) { return false; }));
  EXPECT_FALSE(std::filesystem::exists(copy + ".partial"));
  const std::string before = ContentOf(path);
  int step = 0;
  EXPECT_TRUE(writer->Backup(Wide(copy), [&](auto...) {
    if (step == 3) writer->Compact();
    Fill(writer->GetDataBlock(Texts()), {static_cast<std::size_t>(step), 5}, 7);
    writer->CreateDataBlock(CustomKey(100 + step), 0, 0, "I|d").SetScalar(1, step);
    ++step;
    writer->Save();
    return true;
  }));
  EXPECT_GT(step, 10);
  EXPECT_EQ(ContentOf(copy), before);
  EXPECT_THAT(Open(copy, FED_DatabaseDefs::READ_WRITE)->Verify().problems, IsEmpty());
  EXPECT_NE(ContentOf(path), before);
  EXPECT_FALSE(std::filesystem::exists(copy + ".partial"));
  EXPECT_THROW(writer->Backup(Wide(copy)), FED_Failure);
  FlipChunk(path, Numbers(), Part::RECORDS, 2);
  const std::string third = directory / "third";
  EXPECT_THAT(CatchFailure([&] { Open(path)->Backup(Wide(third)); }).GetMessageText(),
              AllOf(HasSubstr(Numbers().ToString()), HasSubstr("chunk 2")));
  EXPECT_FALSE(std::filesystem::exists(third + ".partial"));
}

TEST_F(MaintenanceTest, ClosingDropsWhatNoRecordRefersTo) {
  const auto usedBytes = [this] {
    CommitRows rows = RowsOf(path);
    return RowOf(rows, Texts()).contentBytes;
  };
  const std::uint64_t all = 604800;  // 600 of 1000 and 8
  EXPECT_EQ(usedBytes(), all);
  std::uint64_t kept = 0;
  {
    const auto database = Open(path, FED_DatabaseDefs::READ_WRITE);
    FED_DataBlock& texts = database->GetDataBlock(Texts());
    for (const std::size_t index : {0u, 300u, 599u}) WriteText(texts, index);
    WriteText(texts, 100000);  // far away
    kept = texts.SetString("nobody's");
    database->Save();
    EXPECT_EQ(usedBytes(), all + 4040);
  }
  EXPECT_EQ(usedBytes(), all + 1008);
  const auto database = Open(path, FED_DatabaseDefs::READ_WRITE);
  const std::uint64_t generation = database->GetGeneration();
  FED_DataBlock& texts = database->GetDataBlock(Texts());
  for (const std::size_t index : {0u, 1u, 300u, 598u, 599u, 100000u}) {
    EXPECT_EQ(TextAt(texts, index), std::string(1000, static_cast<char>(index)));
  }
  std::string text;
  EXPECT_THROW(texts.GetString(kept, text), FED_Failure);
  EXPECT_EQ(texts.SetString("new"), kept + 1);
  EXPECT_THAT(database->Verify().problems, IsEmpty());
  const TextRecord none{};
  RunsOf(texts).WriteRun(598, 1, &none);
  database->Compact();
  EXPECT_EQ(usedBytes(), all);
  EXPECT_GT(database->GetGeneration(), generation);
}

}  // namespace
}  // namespace qelta::test
