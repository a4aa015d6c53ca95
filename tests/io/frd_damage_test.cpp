#include <gtest/gtest.h>

#include <random>

#include "FailureMatcher.h"
#include "FrdTestFiles.h"

namespace qelta::test {
namespace {

const std::string kHead = "    1C\n";
const std::string kNodesHead =
    "    2C                             2                                     1\n";
const std::string kNode1 = " -1         1 0.00000E+00 0.00000E+00 0.00000E+00\n";
const std::string kNode2 = " -1         2 1.00000E+00 0.00000E+00 0.00000E+00\n";
const std::string kNodes = kNodesHead + kNode1 + kNode2 + " -3\n";
const std::string kFrame =
    "  100CL  101 1.000000000           2                     0    1           1\n";
const std::string kField = " -4  T           1    1\n -5  T           1    1    0    0\n";

std::string BinaryHead(const char* key, const char* count, const char* format) {
  const std::string columns(12 - std::string(count).size(), ' ');
  return std::string(key) + std::string(24 - std::string(key).size(), ' ') + columns + count +
         std::string(37, ' ') + " " + format + "\n";
}

struct Damage {
  const char* name;
  std::string content;
  const char* place;  // as the message has it
  const char* cause;  // a part of it
};

class FrdDamage : public testing::TestWithParam<Damage> {};

TEST_P(FrdDamage, IsReportedWithPlaceAndCause) {
  const FED_Failure failure = CatchFailure([] { ReadEventsOf(GetParam().content); });
  EXPECT_NE(failure.GetMessageText().find(std::string(".frd, ") + GetParam().place + ": "),
            std::string::npos)
      << failure.what();
  EXPECT_NE(failure.GetMessageText().find(GetParam().cause), std::string::npos) << failure.what();
  EXPECT_EQ(failure.GetMessageId().substr(0, 8), "31000000");
}

INSTANTIATE_TEST_SUITE_P(
    Text, FrdDamage,
    testing::Values(
        Damage{"Foreign", "*HEADING\n", "line 1", "begins with '    1C'"},
        Damage{"NoLineEnd", std::string(200000, 'x'), "line 1", "no line end"},
        Damage{"NulInHeader", kHead + std::string("    1Uab\0c\n", 11), "line 2", "no text"},
        Damage{"UnknownRecord", kHead + "    7C\n", "line 2", "begins no known record"},
        Damage{"RecordOutsideTable", kHead + " -1         1\n", "line 2", "no known record"},
        Damage{"NodeId", kHead + kNodesHead + " -1         x 0.0\n", "line 3",
               "'         x' is not readable"},
        Damage{"NodeIdNegative", kHead + kNodesHead + " -1        -1 0.0\n", "line 3",
               "-1 is not positive"},
        Damage{"NodeTwice", kHead + kNodesHead + kNode1 + kNode1, "line 4", "node 1 stands twice"},
        Damage{"MissingValue", kHead + kNodesHead + kNode1.substr(0, 38) + "\n -3\n", "line 3",
               "in column 38 is not a number"},
        Damage{"BadValue", kHead + kNodesHead + kNode1.substr(0, 30) + "#" + kNode1.substr(31),
               "line 3", "is not a number"},
        Damage{"TooManyValues", kHead + kNodesHead + kNode1.substr(0, 49) + " 1.0\n -3\n", "line 3",
               "goes on behind column 49"},
        Damage{"SkippedEnd", kHead + kNodesHead + kNode1 + "    3C\n", "line 4", "table's end"},
        Damage{
            "BadCount",
            kHead + "    2C                           abc                                     1\n",
            "line 2", "NUMNOD '         abc' is not a number"},
        Damage{
            "NegativeCount",
            kHead + "    2C                            -1                                     1\n",
            "line 2", "NUMNOD -1 is negative"},
        Damage{
            "BadFormat",
            kHead + "    2C                             1                                     7\n",
            "line 2", "FORMAT 7 is unknown"},
        Damage{"ElementType", kHead + kNodes + "    3C\n -1         1   13    0    0\n", "line 7",
               "type 13 is unknown"},
        Damage{"ElementNode",
               kHead + kNodes + "    3C\n -1         1   11    0    0\n -2         1         3\n",
               "line 8", "node 3 is in no node table"},
        Damage{"ElementOfTooManyNodes",
               kHead + kNodes +
                   "    3C\n -1         1   11    0    0\n -2         1         2         1\n",
               "line 8", "goes on behind column 23"},
        Damage{"NoFieldHead", kHead + kFrame + kNodes, "line 3", "' -4' is due"},
        Damage{"FieldWithoutName", kHead + kFrame + " -4              1    1\n", "line 3",
               "no name"},
        Damage{"NoComponents", kHead + kFrame + " -4  T           0    1\n", "line 3",
               "no components"},
        Damage{"OnlyUnstoredComponents",
               kHead + kFrame + " -4  T           1    1\n -5  ALL         1    2    0    0    1\n",
               "line 4", "no component of the field is stored"},
        Damage{"MissingComponent", kHead + kFrame + kField.substr(0, 24) + " -1         1\n",
               "line 4", "' -5' is due"},
        Damage{"BehindTheEnd", kHead + " 9999\n    1C\n", "line 3", "behind the end"},
        Damage{"TwoFiles", kHead + kNodes + kHead, "line 6", "second result file"},
        Damage{"CutInTable", kHead + kNodesHead + kNode1, "line 3", "middle of a table"},
        Damage{"CutInLine", kHead + kNodesHead + kNode1.substr(0, 44), "line 3",
               "middle of a table"},
        Damage{"CutInFrameHead", kHead + "    1PSTEP                         1\n", "line 2",
               "middle of a table"}),
    [](const testing::TestParamInfo<Damage>& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Binary, FrdDamage,
    testing::Values(
        Damage{"AbsurdNodeCount", kHead + BinaryHead("    2C", "2147483647", "3") + "12345678",
               "byte 83", "middle of a table"},
        Damage{"AbsurdElementCount",
               kHead + kNodes + BinaryHead("    3C", "999999999", "2") + "1234567", "byte 262",
               "middle of a table"},
        Damage{"NoCount", kHead + BinaryHead("    2C", "", "3"), "line 2", "does not say how many"},
        Damage{"ZeroId", kHead + BinaryHead("    2C", "1", "2") + std::string(16, '\0'), "byte 83",
               "number 0 is not positive"},
        Damage{"CountTooSmall",
               kHead + BinaryHead("    2C", "1", "2") + std::string(16, '\1') +
                   std::string(15, '\2') + "\n",
               "byte 99", "no text"}),
    [](const testing::TestParamInfo<Damage>& row) { return std::string(row.param.name); });

TEST(FrdDamageOfPaths, SaysWhatIsWrongWithThePath) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path();
  EXPECT_EQ(FailureId([&] { ReadEvents(folder); }), "310000000002");
  EXPECT_EQ(FailureId([&] { ReadEvents(folder / "no such file.frd"); }), "310000000001");
}

TEST(FrdDamageOfPaths, TellsAnEmptyFileFromADamagedOne) {
  const FED_Failure failure = CatchFailure([] { ReadEventsOf(""); });
  EXPECT_NE(failure.GetMessageText().find(".frd is empty."), std::string::npos) << failure.what();
  EXPECT_EQ(failure.GetMessageText().find("damaged"), std::string::npos) << failure.what();
}

// Right is what the whole file begins with.
void ExpectRightOrFailure(const std::string& content, const std::string& whole,
                          const FrdReadOptions& options) {
  EventLog log;
  const TempFile file(content);
  try {
    FrdReader(file.Path(), options).Read(log);
    std::string begun = log.text.substr(0, log.text.rfind("incomplete\n"));
    if (begun.size() >= 4 && begun.substr(begun.size() - 4) == "cut\n")
      begun.resize(begun.size() - 4);
    EXPECT_EQ(begun, whole.substr(0, begun.size())) << "cut at " << content.size();
  } catch (const FED_Failure& failure) {
    EXPECT_NE(failure.GetMessageText().find(file.Path().string()), std::string::npos);
    EXPECT_EQ(log.text, whole.substr(0, log.text.size())) << "cut at " << content.size();
  }
}

// Every end of a line, and some places in between.
std::vector<std::size_t> CutPlaces(const std::string& content) {
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < content.size(); i += 1 + i % 197) places.push_back(i);
  for (std::size_t i = content.find('\n'); i != std::string::npos; i = content.find('\n', i + 1)) {
    places.push_back(i + 1);
  }
  return places;
}

class FrdDamageOfFiles : public testing::TestWithParam<const char*> {};

TEST_P(FrdDamageOfFiles, CutAnywhereGivesTheBeginningOrAFailure) {
  const std::string content = Slurp(DataFile(GetParam()));
  const std::string whole = ReadEventsOf(content);
  FrdReadOptions running;
  running.acceptRunningJob = true;
  for (const std::size_t place : CutPlaces(content)) {
    ExpectRightOrFailure(content.substr(0, place), whole, {});
    ExpectRightOrFailure(content.substr(0, place), whole, running);
  }
}

TEST_P(FrdDamageOfFiles, FlippedBytesNeverCrash) {
  const std::string content = Slurp(DataFile(GetParam()));
  std::mt19937 random(11);
  int failures = 0;
  for (int i = 0; i < 1500; ++i) {
    std::string damaged = content;
    for (int j = 0; j <= i % 3; ++j) {
      damaged[random() % damaged.size()] = static_cast<char>(random() % 256);
    }
    try {
      ReadEventsOf(damaged);
    } catch (const FED_Failure&) {
      ++failures;
    }
  }
  EXPECT_GT(failures, 0);
}

INSTANTIATE_TEST_SUITE_P(Frd, FrdDamageOfFiles,
                         testing::Values("cantilever_binary.frd", "elements.frd", "harmonic.frd"));

// A running job: the tables that ended are there, the last one is taken back.
TEST(FrdRunningJob, IsAcceptedOnRequest) {
  FrdReadOptions running;
  running.acceptRunningJob = true;
  const std::string cut = kHead + kNodes + kFrame + kField + " -1         1 1.00000E+00\n -1     ";
  EXPECT_EQ(ReadEventsOf(cut, running),
            "model \nnodes\n1@0 0 0 0\n2@1 1 0 0\nend\nT type 0 frame 1 value 1: T\ncut\n"
            "incomplete\n");
}

}  // namespace
}  // namespace qelta::test
