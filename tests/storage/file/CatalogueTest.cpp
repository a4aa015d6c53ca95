#include "Catalogue.h"

#include <gmock/gmock.h>

#include <fstream>

#include "FailureMatcher.h"
#include "FaultyFiles.h"
#include "KeyCode.h"
#include "SqliteConnection.h"
#include "TemporaryDirectory.h"

namespace qelta::test {
namespace {

#if defined(_WIN32)
constexpr char kFileName[] = "cata%20logue#.sqlite";  // no name has a question mark there
#else
constexpr char kFileName[] = "cata%20logue?#.sqlite";
#endif

using Access = Catalogue::Access;
using testing::Contains;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

std::string Key(std::uint64_t i) { return EncodeKey({static_cast<int>(i), FED_OnfId{12}}); }

BlockRow Block(std::uint64_t key, std::uint64_t n) {
  return {Key(key), "RD", -3, n, n + 1, n << 40, 5, PackChunks({{Part::RECORDS, 0, {n, 1, ~n}}})};
}

CatalogueChanges Changes(std::uint64_t generation, const std::vector<BlockRow>& written) {
  CatalogueChanges changes;
  changes.state = {{1, 0, 255}, generation, "payload-1.qd", 4096 * generation};
  for (const BlockRow& row : written) changes.written.push_back(&row);
  return changes;
}

Catalogue::Visitor Lister(Lines& all) {
  const auto add = [&](const std::string& text, auto... numbers) {
    all.push_back((text + ... + ('/' + std::to_string(numbers))));
  };
  return {
      [=](const CatalogueState& s) { add(s.payload, s.generation, s.payloadLength, s.uuid[2]); },
      [=](BlockRow&& r) {
        add(r.key + r.format + r.chunks, r.properties, r.records, r.span, r.handles,
            r.contentBytes);
      },
      [=](AliasRow&& r) { add(r.alias + r.key); },
      [=](IdMapRow&& r) { add(r.chunks, r.type, r.entities, r.bytes); }};
}

template <class C>
Lines Contents(C&& catalogue) {
  Lines lines;
  catalogue.Load(Lister(lines));
  return lines;
}

class CatalogueTest : public testing::Test {
 protected:
  CatalogueTest() { Catalogue::Create(m_Files, m_Path, Changes(1, {}).state); }

  Catalogue Open(Access access = Access::READ, bool usesWal = true) {
    return Catalogue(m_Files, m_Path, access, usesWal);
  }
  void Fill(std::uint64_t blocks) {
    std::vector<BlockRow> rows;
    for (std::uint64_t i = 0; i < blocks; ++i) rows.push_back(Block(i, i));
    CatalogueChanges changes = Changes(2, rows);
    changes.replacesAliases = true;
    changes.aliases = {{Key(100), Key(0)}, {Key(101), Key(1)}};
    changes.idMaps = {{3, 4, 5, PackChunks({{Part::ID_MAP, 0, {1, 2, 3}}})}};
    Open(Access::WRITE).Commit(changes);
  }
  Lines Read() { return Contents(Open()); }
  Lines ReadIntact() {
    Lines lines;
    Open().LoadIntact(Lister(lines), [this](const std::string& s) { m_Damages.push_back(s); });
    return lines;
  }
  void Sql(const char* sql) {
    SqliteConnection(m_Files, m_Path, SqliteConnection::Mode::WRITE).Execute(sql);
  }
  std::string GetBytes() const {
    std::ifstream file(m_Path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void SetBytes(const std::string& bytes) { std::ofstream(m_Path, std::ios::binary) << bytes; }

  const TemporaryDirectory m_Folder;
  const std::string m_Path = m_Folder / kFileName;
  FaultyFiles m_Files{SystemFiles()};
  Lines m_Damages;
};

TEST_F(CatalogueTest, HoldsWhatManyCommitsMadeOfIt) {
  Fill(3);
  for (const bool usesWal : {true, false}) {
    std::vector<BlockRow> model;  // in the order of first storing
    const auto find = [&model](const std::string& key) {
      return std::find_if(model.begin(), model.end(), [&](auto& row) { return row.key == key; });
    };
    Catalogue catalogue = Open(Access::WRITE, usesWal);
    for (std::uint64_t i = 0; i < 40; ++i) {
      const std::vector<BlockRow> rows = {Block(i * 7 % 11, i), Block(20 + i * 5 % 17, i)};
      CatalogueChanges changes = Changes(i, rows);
      changes.clears = i == 0;
      const auto gone = find(changes.deleted.emplace_back(Key(i * 3 % 13)));
      if (gone != model.end()) model.erase(gone);
      for (const BlockRow& row : rows) {
        const auto place = find(row.key);
        *(place != model.end() ? place : model.insert(place, row)) = row;
      }
      catalogue.Commit(changes);
      if (i == 30) catalogue.Vacuum();
      Lines expected;
      Lister(expected).state(changes.state);
      for (BlockRow row : model) Lister(expected).block(std::move(row));
      ASSERT_EQ(Contents(catalogue), expected) << i;
    }
    const std::string copy = m_Path + std::to_string(usesWal);
    catalogue.CopyInto(copy);
    EXPECT_EQ(Contents(Catalogue(m_Files, copy, Access::IMMUTABLE, true)), Contents(catalogue));
    catalogue.Close();
    EXPECT_EQ(m_Files.List(m_Folder.GetPath()).size(), usesWal ? 2u : 3u);
  }
}

TEST_F(CatalogueTest, EveryFlippedByteAndEveryTruncationIsNoticedOrWithoutEffect) {
  Fill(3);
  const std::string bytes = GetBytes();
  const Lines expected = Read();
  const auto check = [&](std::size_t at) {
    m_Damages.clear();
    try {
      const Lines intact = ReadIntact();
      for (std::size_t i = 1; i < intact.size(); ++i) ASSERT_THAT(expected, Contains(intact[i]));
      ASSERT_EQ(intact == expected, m_Damages.empty()) << at;
      ASSERT_EQ(Read(), expected) << at;
    } catch (const FED_Failure& failure) {
      ASSERT_THAT(failure.GetMessageText(), HasSubstr(m_Path));
    }
  };
  const auto file = SystemFiles().Open(m_Path, OpenMode::READ_WRITE);
  for (std::size_t at = 0; at < bytes.size(); at += bytes[at] == 0 ? 61u : 1u) {
    const char flipped = static_cast<char>(bytes[at] ^ (at % 2 == 0 ? 1 : 0x81));
    file->WriteAt(at, &flipped, 1);
    check(at);
    file->WriteAt(at, &bytes[at], 1);
  }
  for (std::size_t size = bytes.size(); size > 4000; check(size)) file->Truncate(size -= 4000);
}

TEST_F(CatalogueTest, RowsAreReachedFromBothEndsOfADamagedTable) {
  Fill(2000);
  std::string bytes = GetBytes();
  const Lines expected = Read();
  const std::size_t place = bytes.find(Block(1000, 1000).chunks);
  bytes.replace(place / 16384 * 16384, 16384, 16384, '\xee');
  SetBytes(bytes);
  EXPECT_EQ(FailureId([&] { Read(); }), "220200000010");
  const Lines lines = ReadIntact();
  EXPECT_FALSE(m_Damages.empty());
  EXPECT_GT(lines.size(), expected.size() - 200);
  const auto gap = std::mismatch(lines.begin(), lines.end(), expected.begin()).first;
  EXPECT_TRUE(std::equal(gap, lines.end(), expected.end() - (lines.end() - gap)));
  EXPECT_GT(std::min(gap - lines.begin(), lines.end() - gap), 500);
}

TEST_F(CatalogueTest, OtherFilesAndForeignChangesAreToldApart) {
  Fill(3);
  const std::string bytes = GetBytes();
  for (const auto& [sql, id] : {std::pair("PRAGMA user_version = 2", "220200000022"),
                                std::pair("PRAGMA application_id = 1", "220200000021"),
                                std::pair("DELETE FROM meta", "220200000010"),
                                std::pair("DROP TABLE aliases", "220200000010"),
                                std::pair("DELETE FROM blocks WHERE id = 2", "220200000010")}) {
    SetBytes(bytes);
    Sql(sql);
    EXPECT_EQ(FailureId([&] { Read(); }), id) << sql;
  }
  SetBytes(bytes);
  Sql("UPDATE blocks SET iteration = 7 WHERE id = 2; UPDATE id_maps SET name = 'x'; "
      "UPDATE aliases SET key_text = NULL WHERE id = 1");
  Open().VerifyColumns([this](const std::string& s) { m_Damages.push_back(s.substr(0, 9)); });
  EXPECT_EQ(m_Damages, (Lines{"block ITE", "name ITER", "id map 3:"}));
  SetBytes(std::string(20000, 'x'));
  EXPECT_EQ(FailureId([&] { Read(); }), "220200000020");
  EXPECT_FALSE(Catalogue::IsUnfinished(m_Files, m_Path));
  SetBytes("");
  EXPECT_TRUE(Catalogue::IsUnfinished(m_Files, m_Path));
  Catalogue::Create(m_Files, m_Path, Changes(1, {}).state);
  EXPECT_EQ(Read().size(), 1u);
}

TEST_F(CatalogueTest, AFailedCommitChangesNothingAndTheNextOneWorks) {
  for (const bool usesWal : {true, false}) {
    Catalogue catalogue = Open(Access::WRITE, usesWal);
    for (std::uint64_t i = 0, failures = 0; failures == i; ++i) {
      const Lines before = Contents(catalogue);
      m_Files.SetFault({i, IoProblem::NO_SPACE, true, {FileOperation::WRITE}});
      try {
        catalogue.Commit(Changes(50 + i, {Block(1, i), Block(i, 7)}));
      } catch (const FED_Failure& failure) {
        failures += failure.GetMessageId() == "220200000013";
      }
      m_Files.ClearFault();
      EXPECT_EQ(Contents(catalogue) == before, failures > i) << i;
      catalogue.Commit(Changes(i, {Block(2, i)}));
      EXPECT_EQ(catalogue.ReadState().generation, i);
    }
    EXPECT_FALSE(catalogue.HasSyncFailed());
    m_Files.SetFault({0, IoProblem::OTHER, false, {FileOperation::SYNC}});
    EXPECT_NE(FailureId([&] { catalogue.Commit(Changes(99, {})); }), "");
    EXPECT_TRUE(catalogue.HasSyncFailed());
  }
}

TEST_F(CatalogueTest, AReaderSeesOneGenerationWhileTheWriterGoesOn) {
  Fill(3);
  Catalogue writer = Open(Access::WRITE);
  Catalogue reader = Open();
  const Lines expected = Contents(writer);
  Lines lines;
  Catalogue::Visitor visitor = Lister(lines);
  visitor.state = [&, add = visitor.state](const CatalogueState& state) {
    writer.Commit(Changes(3, {Block(0, 50), Block(9, 9)}));
    add(state);
  };
  reader.Load(visitor);
  EXPECT_EQ(lines, expected);
  writer.Close();  // the reader is in its way
  EXPECT_EQ(Contents(reader).size(), expected.size() + 1);
  EXPECT_EQ(Read().size(), expected.size() + 1);
}

}  // namespace
}  // namespace qelta::test
