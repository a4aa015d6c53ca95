#include <FED_MemoryDatabase.h>
#include <QeltaVtuExport.h>
#include <RecordCursor.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>

#include "FailureMatcher.h"
#include "FrdTestFiles.h"

namespace qelta::test {
namespace {

namespace fs = std::filesystem;
using Key = FED_DataDescriptor;

/// A folder of its own for a test, with a file that exports would replace.
class Folder {
 public:
  Folder() : m_Path(fs::temp_directory_path() / ("qelta_vtu_" + std::to_string(Random()))) {
    fs::create_directory(m_Path);
    std::ofstream(m_Path / "old.vtu") << "before";
  }
  ~Folder() { fs::remove_all(m_Path); }

  std::string operator/(const std::string& name) const { return (m_Path / name).u8string(); }

  void ExpectUntouched() const {
    EXPECT_EQ(std::distance(fs::directory_iterator(m_Path), fs::directory_iterator()), 1);
    EXPECT_EQ(Slurp(m_Path / "old.vtu"), "before");
  }

 private:
  static unsigned Random() { return std::random_device()(); }
  fs::path m_Path;
};

struct Database : FED_MemoryDatabase {
  explicit Database(int nodes) {
    InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"");
    for (int i = 0; i < nodes; ++i) {
      const double place[3] = {static_cast<double>(i), 0.5, -1};
      FetchDataBlock(Key(ONF_NODE_COORDINATES), std::size_t{0})
          .SetVector(static_cast<std::size_t>(i), place);
    }
  }
  void SetElement(int type, const std::vector<int>& nodes) {
    FED_DataBlock& block = FetchDataBlock(Key(ONF_ELEMENT_TOPOLOGY), std::size_t{0});
    const RecordWriter record(block);
    record->SetInteger(1, type);
    record->SetIntList(2, nodes);
    block.SetRecord(0, *record);
  }
};

void Export(const Database& database, const std::string& path, const QeltaVtuOptions& options) {
  QeltaVtuExport files(database, database.FindBlocks({}), options);
  if (path.find(".pvd") == std::string::npos) {
    files.WriteFile(path);
  } else {
    files.WriteCollection(path);
  }
}

TEST(Vtu, NothingIsLeftOfAnExportThatFails) {
  struct Case {
    int type;
    std::vector<int> nodes;
    std::uint64_t interruptedAt;
    std::string id;
  };
  constexpr std::uint64_t kNever = 1'000'000;
  const Case cases[] = {{5, {0, 1, 7}, kNever, "310000001102"},
                        {5, {0, 1}, kNever, "310000001101"},
                        {300, {0, 1}, kNever, "310000000902"},
                        {5, {0, 1, 2}, 100, "1"},
                        {5, {0, 1, 2}, 1, "1"}};
  for (const Case& one : cases) {
    Database database(3);
    database.SetElement(one.type, one.nodes);
    const Folder folder;
    for (const char* name : {"old.vtu", "new.vtu", "new.pvd"}) {
      for (const bool compresses : {false, true}) {
        QeltaVtuOptions options;
        options.compresses = compresses;
        options.onProgress = [&one](std::uint64_t done, std::uint64_t total) {
          EXPECT_LE(done, total);
          if (done >= one.interruptedAt) FED_Failure::Throw("1", "", "interrupted");
        };
        EXPECT_EQ(FailureId([&] { Export(database, folder / name, options); }), one.id);
        folder.ExpectUntouched();
      }
    }
  }
}

// The only array of a plain file that is as long as one value for each node.
std::string LastBytes(const std::string& file, std::size_t count) {
  const std::size_t end = file.find("\n</AppendedData>");
  return file.substr(end - count, count);
}

TEST(Vtu, NumbersOfOtherTypesAndMissingOnes) {
  struct Case {
    const char* format;
    const char* element;
    bool isFloat;
  };
  for (const Case& one : {Case{"I|i", "type=\"Float64\" Name=\"X\"", false},
                          Case{"I|f", "type=\"Float32\" Name=\"X\"", true}}) {
    Database database(3);
    Key key;
    key.SetString(Key::LABEL, "X");
    key.SetInteger(Key::ID_TYPE, ID_TYPE_NODE);
    FED_DataBlock& block = database.FetchDataBlock(key, 0, 0, one.format);
    const RecordWriter record(block);
    one.isFloat ? record->SetFloat(1, -7) : record->SetInteger(1, -7);
    for (const std::size_t index : {std::size_t{2}, std::size_t{9}})
      block.SetRecord(index, *record);
    const Folder folder;
    QeltaVtuExport files(database, {key}, {});
    files.WriteFile(folder / "x.vtu");
    EXPECT_EQ(files.GetStrayCount(), 1u);
    const std::string text = Slurp(folder / "x.vtu");
    EXPECT_NE(text.find(one.element), std::string::npos);
    std::vector<double> values(3);
    if (one.isFloat) {
      float numbers[3];
      std::memcpy(numbers, LastBytes(text, sizeof numbers).data(), sizeof numbers);
      std::copy(numbers, numbers + 3, values.begin());
    } else {
      std::memcpy(values.data(), LastBytes(text, 24).data(), 24);
    }
    EXPECT_TRUE(std::isnan(values[0]) && std::isnan(values[1]));
    EXPECT_EQ(values[2], -7);
  }
}

TEST(Vtu, TextsOfADatabaseCannotBreakTheFile) {
  Database database(1);
  Key key;
  key.SetString(Key::LABEL, "a<b>&\"c\"\n\x01\xff");
  key.SetInteger(Key::ID_TYPE, ID_TYPE_NODE);
  database.FetchDataBlock(key, 0, 0, "I|d").SetScalar(0, 1);
  const Folder folder;
  QeltaVtuExport(database, {key}, {}).WriteFile(folder / "x.vtu");
  EXPECT_NE(Slurp(folder / "x.vtu").find("Name=\"a&lt;b&gt;&amp;&quot;c&quot;___\""),
            std::string::npos);
}

}  // namespace
}  // namespace qelta::test
