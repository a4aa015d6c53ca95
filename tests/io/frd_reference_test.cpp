// The results of the solver's own test decks, as Debian's calculix-ccx-test has them, against a
// count that knows nothing but lines and columns.

#include <FED_MemoryDatabase.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <set>
#include <sstream>

#include "BlockDump.h"
#include "FrdImport.h"
#include "FrdTestFiles.h"

namespace qelta::test {
namespace {

namespace fs = std::filesystem;

const char* const kFolder = "/usr/share/doc/calculix-ccx-test/examples/test";

struct Tally {
  std::size_t datasets = 0;
  std::size_t values = 0;
  double sum = 0;
  double scale = 0;

  void Add(double value) {
    ++values;
    sum += value;
    scale += std::fabs(value);
  }
};

using Tallies = std::map<std::string, Tally>;  // by label; "nodes" and "elements" for the mesh

void AddColumns(const std::string& line, std::size_t first, std::size_t width, Tally& tally) {
  for (std::size_t at = first; at + width <= line.size(); at += width) {
    const std::string column = line.substr(at, width);
    if (column.find_first_not_of(' ') != std::string::npos) tally.Add(std::stod(column));
  }
}

Tallies CountLines(const std::string& content) {
  Tallies tallies;
  std::istringstream lines(content);
  std::string table;
  for (std::string line; std::getline(lines, line);) {
    const std::string key = line.substr(0, 3);
    if (line.substr(0, 6) == "    2C") table = "nodes";
    if (line.substr(0, 6) == "    3C") table = "elements";
    if (key == " -4") {
      table = line.substr(5, 8);
      table.erase(table.find_last_not_of(' ') + 1);
      ++tallies[table].datasets;
    }
    const bool isElement = table == "elements";
    if (isElement && key == " -1") ++tallies[table].datasets;
    if (isElement && key == " -2") AddColumns(line, 3, 10, tallies[table]);
    if (!isElement && (key == " -1" || key == " -2")) AddColumns(line, 13, 12, tallies[table]);
  }
  return tallies;
}

void AddNumbers(const DumpedBlock& block, Tally& tally) {
  for (const auto& [index, record] : block) {
    for (const double number : record.numbers) tally.Add(number);
  }
}

void AddElements(FED_Database& database, const DumpedBlock& block, Tally& tally) {
  const FED_IdMap& nodes = database.GetIdMapsPool().GetMap(ID_TYPE_NODE);
  for (const auto& [index, record] : block) {
    ++tally.datasets;
    for (std::size_t i = 1; i < record.numbers.size(); ++i) {
      tally.Add(nodes.IdOfIndex(static_cast<std::int64_t>(record.numbers[i])));
    }
  }
}

Tallies CountBlocks(FED_Database& database) {
  using Key = FED_DataDescriptor;
  Tallies tallies;
  std::set<std::string> datasets;
  for (Key key : database.FindBlocks(FED_DataDescriptorPattern())) {
    const DumpedBlock block = DumpBlock(database.GetDataBlock(key));
    const int onf = key.Has(Key::ONF) ? key.GetInteger(Key::ONF) : 0;
    if (onf == ONF_NODE_COORDINATES) AddNumbers(block, tallies["nodes"]);
    if (onf == ONF_ELEMENT_TOPOLOGY) AddElements(database, block, tallies["elements"]);
    if (onf == ONF_TEXT_NOTE || !key.Has(Key::LABEL)) continue;
    const std::string label = key.GetString(Key::LABEL);
    AddNumbers(block, tallies[label]);
    key.Unset(Key::SUB_LEVEL);  // the parts of one dataset
    if (datasets.insert(key.ToString()).second) ++tallies[label].datasets;
  }
  return tallies;
}

void ExpectSame(const Tallies& blocks, const Tallies& lines, const fs::path& path) {
  ASSERT_EQ(blocks.size(), lines.size()) << path;
  for (const auto& [label, tally] : lines) {
    ASSERT_EQ(blocks.count(label), 1U) << path << label;
    EXPECT_EQ(blocks.at(label).datasets, tally.datasets) << path << label;
    EXPECT_EQ(blocks.at(label).values, tally.values) << path << label;
    EXPECT_NEAR(blocks.at(label).sum, tally.sum, 1e-12 * tally.scale) << path << label;
  }
}

std::string Unpack(const fs::path& path) {
  if (path.extension() != ".gz") return Slurp(path);
  const TempFile unpacked("");
  const std::string command =
      "gzip -dc '" + path.string() + "' > '" + unpacked.Path().string() + "'";
  EXPECT_EQ(std::system(command.c_str()), 0);
  return Slurp(unpacked.Path());
}

TEST(FrdReferences, AgreeWithACountOfTheirLines) {
  if (!fs::is_directory(kFolder)) GTEST_SKIP() << "calculix-ccx-test is not installed";
  std::size_t files = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(kFolder)) {
    if (entry.path().filename().string().find(".frd") == std::string::npos) continue;
    const std::string content = Unpack(entry.path());
    FED_MemoryDatabase database;
    database.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"test");
    EXPECT_TRUE(ImportFrd(TempFile(content).Path(), database));
    ExpectSame(CountBlocks(database), CountLines(content), entry.path());
    ++files;
  }
  EXPECT_GE(files, 52U);
}

}  // namespace
}  // namespace qelta::test
