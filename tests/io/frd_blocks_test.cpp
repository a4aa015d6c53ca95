#include <FED_MemoryDatabase.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "BlockDump.h"
#include "FakeDatabase.h"
#include "FrdFieldMap.h"
#include "FrdImport.h"
#include "FrdKeys.h"
#include "FrdSummary.h"
#include "FrdTestFiles.h"

namespace qelta::test {
namespace {

template <class Database>
class Filled : public Database {
 public:
  explicit Filled(const std::filesystem::path& path) {
    this->InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"test");
    ImportFrd(path, *this);
  }
};
using Memory = Filled<FED_MemoryDatabase>;

std::string Shape(const Dump& dump) {
  std::string shape;
  for (const auto& [key, block] : dump) shape += key + " " + std::to_string(block.size()) + "\n";
  return shape;
}

TEST(FrdBlocks, NameTheirFrameInTheKey) {
  Memory database(ExampleFile("cantilever.frd"));
  const std::string shape = Shape(DumpDatabase(database));
  for (const char* line :
       {"ONF=2 54\n", "ONF=11 16\n", "ONF=12 16\n", "ONF=308/LABEL=HEADER 11\n",
        "ONF=101/LOADCASE=1/SUBSTEP=4/ANALYSIS=0/INCREMENT=4/LABEL=DISP 54\n",
        "ONF=107/LOADCASE=1/SUBSTEP=2/ANALYSIS=0/INCREMENT=2/LABEL=STRESS 54\n",
        "ONF=301/LOADCASE=1/SUBSTEP=3/ANALYSIS=0/INCREMENT=3 1\n",
        "ONF=114/STATE=2/LOADCASE=2/SUBSTEP=6/ANALYSIS=2/INCREMENT=1/LABEL=DISP 54\n",
        "ONF=302/STATE=4/LOADCASE=2/SUBSTEP=8/ANALYSIS=2/INCREMENT=1 1\n",
        "ONF=304/STATE=4/LOADCASE=2/SUBSTEP=8/ANALYSIS=2/INCREMENT=1 1\n"}) {
    EXPECT_NE(shape.find(line), std::string::npos) << line << "is not in\n" << shape;
  }
}

TEST(FrdBlocks, TellBucklingComplexAndPhaseResultsApart) {
  Memory database(DataFile("harmonic.frd"));
  const std::string shape = Shape(DumpDatabase(database));
  for (const char* line :
       {"ONF=101/LOADCASE=1/SUBSTEP=2/ANALYSIS=4/INCREMENT=1/LABEL=DISP 8\n",
        "ONF=303/LOADCASE=1/SUBSTEP=2/ANALYSIS=4/INCREMENT=1 1\n",
        "ONF=114/LOADCASE=1/SUBSTEP=3/ANALYSIS=4/INCREMENT=1/LABEL=DISP 8\n",
        "ONF=101/LOADCASE=4/SUBSTEP=8/ANALYSIS=5/INCREMENT=0/LABEL=DISP 8\n",
        "ONF=101/LOADCASE=4/SUBSTEP=8/ANALYSIS=5/INCREMENT=0/LABEL=DISPI/SUB_LEVEL=1 8\n",
        "ONF=101/LOADCASE=5/SUBSTEP=10/ANALYSIS=5/INCREMENT=0/LABEL=PDISP/SUB_LEVEL=2 8\n",
        "ONF=107/LOADCASE=5/SUBSTEP=11/ANALYSIS=5/INCREMENT=0/LABEL=PSTRESS/SUB_LEVEL=3 8\n",
        "ONF=302/LOADCASE=5/SUBSTEP=11/ANALYSIS=5/INCREMENT=0 1\n"}) {
    EXPECT_NE(shape.find(line), std::string::npos) << line << "is not in\n" << shape;
  }
}

// The polar form that one step writes is the complex form that the other one writes.
TEST(FrdBlocks, KeepAmplitudeAndPhaseInPlace) {
  Memory database(DataFile("harmonic.frd"));
  Dump dump = DumpDatabase(database);
  const std::string frame = "/SUBSTEP=9/ANALYSIS=5/INCREMENT=0/LABEL=DISP";
  const std::string polar = "ONF=101/LOADCASE=5/SUBSTEP=11/ANALYSIS=5/INCREMENT=0/LABEL=PDISP";
  for (const auto& [index, real] : dump["ONF=101/LOADCASE=4" + frame]) {
    const auto& imaginary = dump["ONF=101/LOADCASE=4" + frame + "I/SUB_LEVEL=1"].at(index);
    const auto& amplitude = dump[polar + "/SUB_LEVEL=2"].at(index);
    const auto& phase = dump[polar + "/SUB_LEVEL=3"].at(index);
    for (std::size_t i = 0; i < 3; ++i) {
      const double length = std::hypot(real.numbers[i], imaginary.numbers[i]);
      const double angle = phase.numbers[i] * std::acos(-1.0) / 180;
      EXPECT_NEAR(amplitude.numbers[i], length, 1e-5 * length);
      EXPECT_NEAR(amplitude.numbers[i] * std::cos(angle), real.numbers[i], 1e-5 * length);
      EXPECT_NEAR(amplitude.numbers[i] * std::sin(angle), imaginary.numbers[i], 1e-5 * length);
    }
  }
}

void ExpectClose(const DumpedBlock& a, const DumpedBlock& b, const std::string& key) {
  double scale = 0;
  for (const auto& [index, record] : a) {
    for (const double number : record.numbers) scale = std::max(scale, std::fabs(number));
  }
  for (const auto& [index, record] : a) {
    for (std::size_t i = 0; i < record.numbers.size(); ++i) {
      const double x = record.numbers[i];
      ASSERT_NEAR(x, b.at(index).numbers[i], 5e-6 * std::fabs(x) + 1e-12 * scale) << key;
    }
  }
}

TEST(FrdBlocks, AreTheSameFromTextAndBinary) {
  Memory text(ExampleFile("cantilever.frd"));
  Memory binary(DataFile("cantilever_binary.frd"));
  const Dump a = DumpDatabase(text);
  const Dump b = DumpDatabase(binary);
  ASSERT_EQ(Shape(a), Shape(b));
  // The estimated error of an exact stress is noise.
  for (const auto& [key, block] : a) {
    if (key.find("LABEL=ERROR") == std::string::npos) ExpectClose(block, b.at(key), key);
  }
}

TEST(FrdBlocks, AreTheSameThroughSingleRecords) {
  for (const char* name : {"harmonic.frd", "elements.frd", "cantilever_binary.frd"}) {
    Memory runs(DataFile(name));
    Filled<FakeDatabase> singles(DataFile(name));
    EXPECT_EQ(DumpDatabase(runs), DumpDatabase(singles)) << name;
  }
}

// VTK's quadratic cells: the corners that each mid-edge node lies between.
using Edges = std::vector<std::pair<int, int>>;
const std::map<int, Edges>& VtkEdges() {
  static const std::map<int, Edges> edges = {
      {21, {{0, 1}}},
      {22, {{0, 1}, {1, 2}, {2, 0}}},
      {23, {{0, 1}, {1, 2}, {2, 3}, {3, 0}}},
      {24, {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}}},
      {25,
       {{0, 1},
        {1, 2},
        {2, 3},
        {3, 0},
        {4, 5},
        {5, 6},
        {6, 7},
        {7, 4},
        {0, 4},
        {1, 5},
        {2, 6},
        {3, 7}}},
      {26, {{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5}, {5, 3}, {0, 3}, {1, 4}, {2, 5}}}};
  return edges;
}

TEST(FrdBlocks, ListNodesInTheOrderOfVtk) {
  Memory database(DataFile("elements.frd"));
  Dump dump = DumpDatabase(database);
  const DumpedBlock& nodes = dump["ONF=2"];
  std::set<int> types;
  for (const auto& [index, element] : dump["ONF=12"]) {
    const auto& numbers = element.numbers;  // the type, then the nodes
    const int type = static_cast<int>(numbers[0]);
    types.insert(type);
    const auto edges = VtkEdges().find(type);
    if (edges == VtkEdges().end()) continue;
    const auto at = [&](std::size_t node, std::size_t axis) {
      return nodes.at(static_cast<std::size_t>(numbers[1 + node])).numbers[axis];
    };
    const std::size_t corners = numbers.size() - 1 - edges->second.size();
    for (std::size_t i = 0; i < edges->second.size(); ++i) {
      const auto a = static_cast<std::size_t>(edges->second[i].first);
      const auto b = static_cast<std::size_t>(edges->second[i].second);
      for (std::size_t axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(at(corners + i, axis), (at(a, axis) + at(b, axis)) / 2) << "type " << type;
      }
    }
  }
  EXPECT_EQ(types, (std::set<int>{3, 5, 9, 10, 12, 13, 21, 22, 23, 24, 25, 26}));
}

TEST(FrdBlocks, ReferToMaterialsAndGroupsByName) {
  Memory database(DataFile("elements.frd"));
  Dump dump = DumpDatabase(database);
  const auto nameOf = [&](FED_IdType type, double index) {
    std::string name;
    database.GetIdMapsPool().GetMap(type).NameOfIndex(static_cast<std::int64_t>(index), name);
    return name;
  };
  const auto& attributes = dump["ONF=11"];
  EXPECT_EQ(nameOf(ID_TYPE_ELEMENT_GROUP, attributes.at(0).numbers[0]), "GROUP_0");
  EXPECT_EQ(nameOf(ID_TYPE_MATERIAL, attributes.at(0).numbers[1]), "STEEL");
  EXPECT_EQ(nameOf(ID_TYPE_MATERIAL, attributes.at(11).numbers[1]), "BRASS");
}

const char* const kFile =
    "    1C\n"
    "    2C                             2                                     1\n"
    " -1         5 1.00000E+00 0.00000E+00 0.00000E+00\n"
    " -1         3 2.00000E+00 0.00000E+00 0.00000E+00\n -3\n";

std::string Temperature(const std::string& records) {
  return "    1PSTEP                         1           1           0\n"
         "  100CL  101 1.000000000           2                     0    1           1\n"
         " -4  NDTEMP      1    1\n -5  T           1    1    0    0\n" +
         records + " -3\n";
}

TEST(FrdBlocks, KeepASecondBlockOfTheSameKey) {
  const TempFile file(kFile + Temperature(" -1         5 1.00000E+00\n") +
                      Temperature(" -1         3 2.00000E+00\n") +
                      Temperature(" -1         9 3.00000E+00\n"));
  Memory database(file.Path());
  Dump dump = DumpDatabase(database);
  const std::string key = "ONF=106/SUBSTEP=1/ANALYSIS=0/INCREMENT=1/LABEL=NDTEMP";
  EXPECT_EQ(dump[key], (DumpedBlock{{0, {{1.0}, {}}}}));
  EXPECT_EQ(dump[key + "#2"], (DumpedBlock{{1, {{2.0}, {}}}}));
  EXPECT_EQ(dump[key + "#3"], (DumpedBlock{{2, {{3.0}, {}}}}));
  EXPECT_EQ(dump.count("ONF=301/SUBSTEP=1/ANALYSIS=0/INCREMENT=1"), 1U);
  EXPECT_EQ(SummarizeFrd(file.Path()).nodesWithoutCoordinates, 1U);
}

// Blank columns for step and NUMSTP: the keys of the frames are the same.
std::string UnnumberedFrame(const std::string& time) {
  std::string text;
  for (const char* name : {"DISPX   ", "DISPY   ", "DISPZ   "}) {
    text += "  100CL  101 " + time + "           2                     0                1\n -4  " +
            name +
            "    1    1\n -5  T           1    1    0    0\n -1         5 1.00000E+00\n -3\n";
  }
  return text;
}

TEST(FrdBlocks, HoldAFrameValueOnceThoughKeysCollide) {
  Memory database(TempFile(kFile + UnnumberedFrame("1.000000000") + UnnumberedFrame("2.000000000") +
                           UnnumberedFrame("3.000000000"))
                      .Path());
  Dump dump = DumpDatabase(database);
  EXPECT_EQ(dump.size(), 2U + 9 + 3) << Shape(dump);
  EXPECT_EQ(dump["ONF=301/ANALYSIS=0"], (DumpedBlock{{0, {{1.0}, {}}}}));
  EXPECT_EQ(dump["ONF=301/ANALYSIS=0/LABEL=#2"], (DumpedBlock{{0, {{2.0}, {}}}}));
  EXPECT_EQ(dump["ONF=301/ANALYSIS=0/LABEL=#3"], (DumpedBlock{{0, {{3.0}, {}}}}));
}

TEST(FrdBlocks, KeepIndicesOverRemeshingAndASecondImport) {
  const std::string secondMesh =
      "    2C                             2                                     1\n"
      " -1         3 7.00000E+00 0.00000E+00 0.00000E+00\n"
      " -1         8 8.00000E+00 0.00000E+00 0.00000E+00\n -3\n";
  Memory database(TempFile(kFile + secondMesh).Path());
  EXPECT_EQ(DumpDatabase(database)["ONF=2/LABEL=#2"],
            (DumpedBlock{{1, {{7, 0, 0}, {}}}, {2, {{8, 0, 0}, {}}}}));

  const TempFile other(
      "    1C\n    2C\n -1         8 0.00000E+00 0.00000E+00 0.00000E+00\n"
      " -1         4 4.00000E+00 0.00000E+00 0.00000E+00\n -3\n" +
      Temperature(" -1         3 1.00000E+00\n -1         4 2.00000E+00\n"));
  EXPECT_FALSE(ImportFrd(other.Path(), database));
  Dump dump = DumpDatabase(database);
  EXPECT_EQ(dump["ONF=2"], (DumpedBlock{{2, {{0, 0, 0}, {}}}, {3, {{4, 0, 0}, {}}}}));
  EXPECT_EQ(dump["ONF=106/SUBSTEP=1/ANALYSIS=0/INCREMENT=1/LABEL=NDTEMP"],
            (DumpedBlock{{1, {{1.0}, {}}}, {3, {{2.0}, {}}}}));
}

TEST(FrdBlocks, TakeBackATableThatIsCut) {
  const std::string table = Temperature(" -1         5 1.00000E+00\n");
  const TempFile file(kFile + table.substr(0, table.find(" -3")));
  FrdReadOptions running;
  running.acceptRunningJob = true;
  FED_MemoryDatabase database;
  database.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"test");
  EXPECT_FALSE(ImportFrd(file.Path(), database, running));
  EXPECT_EQ(Shape(DumpDatabase(database)), "ONF=2 2\nONF=308/LABEL=HEADER 1\n");
  const FrdFileSummary summary = SummarizeFrd(file.Path(), running);
  EXPECT_EQ(summary.blocks.size(), 2U);
  EXPECT_TRUE(summary.steps.empty());

  const TempFile longer(kFile + table + table.substr(0, table.find(" -3")));
  EXPECT_EQ(SummarizeFrd(longer.Path(), running).blocks.size(), 4U);
  EXPECT_EQ(SummarizeFrd(longer.Path(), running).steps.size(), 1U);
}

struct FieldCase {
  const char* name;
  std::vector<FrdComponent> components;
  const char* parts;  // kind or format, first component, SUB_LEVEL, OBJECTIVE_ID
};

std::vector<FrdComponent> Same(std::size_t count, std::int32_t type) {
  return std::vector<FrdComponent>(count, FrdComponent{"C", type, 1, 1});
}

std::vector<FrdComponent> Tensor(std::int32_t type) {
  return {{"XX", type, 1, 1}, {"YY", type, 2, 2}, {"ZZ", type, 3, 3},
          {"XY", type, 1, 2}, {"YZ", type, 2, 3}, {"ZX", type, 3, 1}};
}

std::vector<FrdComponent> operator+(std::vector<FrdComponent> a,
                                    const std::vector<FrdComponent>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

TEST(FrdFieldMap, GivesEveryComponentAPlace) {
  const FieldCase rows[] = {
      {"DISP", Same(3, 2), "101 @0 "},
      {"DISP", Same(3, 2) + Same(2, 1), "I|Vdd @0 "},  // more than a displacement
      {"STRPOS", Tensor(4), "107 @0 "},
      {"STRESS", Same(6, 4), "I|dddddd @0 "},  // not in the order of a tensor
      {"CONTACT", Same(6, 4), "118 @0 "},
      {"PCONTAC", Same(12, 14), "118 @0 sub 2 118 @6 sub 3 "},
      {"PNDTEMP", Same(2, 1), "106 @0 sub 2 106 @1 sub 3 "},
      {"TOSTRAII", Tensor(4), "108 @0 sub 1 "},
      {"MSTRESS", Tensor(4) + Same(1, 4), "I|Td @0 "},
      {"SDV", Same(4, 1), "I|dddd @0 "},
      {"PNEW", Same(6, 12), "I|V @0 sub 2 I|V @3 sub 3 "},
      {"PNEWT", Tensor(14) + Tensor(14), "I|T @0 sub 2 I|T @6 sub 3 "},
      {"SENMASS", {{"DFDN", 1, 1, 0}, {"DFDNFIL", 1, 2, 0}}, "407 @0 MASS 407 @1 sub 4 MASS "},
      {"PRJGRAD",
       {{"DFDN", 1, 1, 0}, {"DFDNFIL", 1, 2, 0}},
       "407 @0 PRJGRAD 407 @1 sub 4 PRJGRAD "},
  };
  for (const FieldCase& row : rows) {
    FrdDataset dataset;
    dataset.name = row.name;
    dataset.components = row.components;
    std::string parts;
    for (const FrdFieldPart& part : MapFrdDataset(dataset)) {
      parts += (part.kind == 0 ? part.format : std::to_string(part.kind)) + " @" +
               std::to_string(part.first) + " ";
      if (part.subLevel != 0) parts += "sub " + std::to_string(part.subLevel) + " ";
      if (!part.objective.empty()) parts += part.objective + " ";
    }
    EXPECT_EQ(parts, row.parts) << row.name;
  }
}

TEST(FrdKeys, LeaveOutWhatNoFieldMayHold) {
  FrdFrame frame;
  frame.step = 0;
  frame.increment = -1;
  frame.mode = -5;
  frame.type = 9;
  EXPECT_EQ(MakeFrdFrameKey(frame).ToString(), "ANALYSIS=3");
  frame.step = frame.increment = frame.mode = frame.number = 2147483647;
  MakeFrdFrameKey(frame).CheckValidity();
}

}  // namespace
}  // namespace qelta::test
