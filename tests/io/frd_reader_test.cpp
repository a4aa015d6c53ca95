#include <gtest/gtest.h>

#include "FrdTestFiles.h"

namespace qelta::test {
namespace {

const char* const kMesh =
    "    1C  model\n"
    "    1UA heading\n"
    "    1UMAT    2BRASS\n"
    "    2C                             4                                     1\n"
    " -1         7 0.00000E+00 0.00000E+00 0.00000E+00\n"
    " -1         9 1.00000E+00 0.00000E+00 0.00000E+00\n"
    " -1       123 0.00000E+00-1.00000E+00 0.00000E+00\n"
    " -1         8 0.00000E+00 0.00000E+00-1.00000E+00\n"
    " -3\n"
    "    3C                             1                                     1\n"
    " -1         5    3    1    2\n"
    " -2         7         9       123         8\n"
    " -3\n";

const char* const kMeshEvents =
    "model model\nheader A heading\nmaterial 2 BRASS\n"
    "nodes\n7@0 0 0 0\n9@1 1 0 0\n123@2 0 -1 0\n8@3 0 0 -1\nend\n"
    "elements\n5@0 tet4 group 1 material 2: 0 1 2 3\nend\n";

std::string Dataset(const std::string& fieldAndRecords) {
  return "    1PSTEP                         1           4           2\n"
         "  100CL  103 1.500000000           4                     1    3           1\n" +
         fieldAndRecords + " -3\n";
}

const char* const kFrameEvents = " type 1 step 2 increment 4 frame 3 value 1.5:";

struct Case {
  const char* name;
  std::string content;
  std::string events;
};

class FrdReaderCases : public testing::TestWithParam<Case> {};

TEST_P(FrdReaderCases, GivesTheEvents) {
  EXPECT_EQ(ReadEventsOf(kMesh + GetParam().content), kMeshEvents + GetParam().events);
}

INSTANTIATE_TEST_SUITE_P(
    Frd, FrdReaderCases,
    testing::Values(
        Case{"NoEndRecord", "", "incomplete\n"}, Case{"EndWithoutLineEnd", " 9999", "complete\n"},
        Case{"BlankLinesAtTheEnd", " 9999\n\n  \n", "complete\n"},
        Case{
            "TouchingValuesAndUnstoredComponent",
            Dataset(" -4  DISP        4    1\n"
                    " -5  D1          1    2    1    0\n -5  D2          1    2    2    0\n"
                    " -5  D3          1    2    3    0\n -5  ALL         1    2    0    0    1ALL\n"
                    " -1         8-1.00000E+00-2.00000E+00-3.00000E+00\n"),
            std::string("DISP") + kFrameEvents + " D1 D2 D3\n8@3 -1 -2 -3\nend\nincomplete\n"},
        Case{"TabInAComponentLine",
             Dataset(" -4  NORM        2    1\n"
                     " -5  NORMX       1    2\t 1    0\n -5  ALL         1    2\t 0    0    1ALL\n"
                     " -1         9 1.00000E+00\n"),
             std::string("NORM") + kFrameEvents + " NORMX\n9@1 1\nend\nincomplete\n"},
        Case{"NameWithBlanksAndNoNumbers",
             Dataset(" -4  OR1  _Rx    1    1\n -5  SDV 1       1    1    0    0\n"
                     " -1         9         NAN\n -1       123         INF\n"),
             std::string("OR1  _Rx") + kFrameEvents +
                 " SDV 1\n9@1 nan\n123@2 inf\nend\nincomplete\n"},
        Case{"NodeThatIsInNoTable",
             Dataset(" -4  T           1    1\n -5  T           1    1    0    0\n"
                     " -1      5000 1.00000E+00\n -1         7 2.00000E+00\n"),
             std::string("T") + kFrameEvents + " T\n5000@4 1\n7@0 2\nend\nincomplete\n"},
        Case{"BlankFrame",
             "    1PSTEP                         1\n"
             "  100CL  10154.572991736                                 0    1           1\n"
             " -4  T           1    1\n -5  T           1    1    0    0\n -3\n",
             "T type 0 frame 1 value 54.5729917: T\nend\nincomplete\n"},
        Case{"ModeAndUnknownParameters",
             "    1PSTEP                         1           1           2\n"
             "    1PGM                1.000000E+00\n    1PGK                4.000000E+05\n"
             "    1PHID                         -1\n    1PSHOCKCOEF             abc\n"
             "    1PMODE                         6\n"
             "  100CL  105 106.3083911           0                     2    5MODAL      1\n"
             " -4  T           1    1\n -5  T           1    1    0    0\n -3\n",
             "T type 2 step 2 increment 1 frame 5 mode 6 value 106.308391 eigenvalue 400000 "
             "mass 1: T\nend\nincomplete\n"},
        Case{"SecondMesh",
             "    2C                                                                   1\n"
             " -1         8 5.00000E+00 0.00000E+00 0.00000E+00\n"
             " -1         1 6.00000E+00 0.00000E+00 0.00000E+00\n -3\n"
             "    3C                            99                                     1\n"
             " -1         6   11    0    0\n -2         1         8\n"
             " -1         5   11    0    0\n -2         8         1\n -3\n",
             "nodes\n8@3 5 0 0\n1@4 6 0 0\nend\nelements\n6@1 line2 group 0 material 0: 4 3\n"
             "5@0 line2 group 0 material 0: 3 4\nend\nincomplete\n"},
        Case{"ShortFormat",
             "    3C                             1                                     0\n"
             " -1    4   11    0    0\n -2    7    9\n -3\n"
             "  100CL  101 1.00000E+00           4                     0    1           0\n"
             " -4  T           1    1\n -5  T           1    1    0    0\n"
             " -1    9 5.00000E-01\n -3\n 9999\n",
             "elements\n4@1 line2 group 0 material 0: 0 1\nend\n"
             "T type 0 frame 1 value 1: T\n9@1 0.5\nend\ncomplete\n"},
        Case{"MaterialByName",
             "    3C                             1                                     1\n"
             " -1         4   11    0EL   \n -2         7         9\n -3\n",
             "elements\n4@1 line2 group 0 material 0EL: 0 1\nend\nincomplete\n"}),
    [](const testing::TestParamInfo<Case>& row) { return std::string(row.param.name); });

TEST(FrdReader, ContinuesRecordsOfManyValues) {
  std::string head = " -4  SDV        13    1\n";
  std::string names;
  for (int i = 1; i <= 13; ++i) {
    const std::string name = "S" + std::to_string(i);
    head += " -5  " + name + std::string(8 - name.size(), ' ') + "    1    1    0    0\n";
    names += " " + name;
  }
  const std::string six =
      " 1.00000E+00 2.00000E+00 3.00000E+00 4.00000E+00 5.00000E+00 6.00000E+00";
  const std::string records =
      " -1         9" + six + "\n -2          " + six + "\n -2           7.00000E+00\n";
  EXPECT_EQ(ReadEventsOf(kMesh + Dataset(head + records)),
            kMeshEvents + ("SDV" + (kFrameEvents + names)) +
                "\n9@1 1 2 3 4 5 6 1 2 3 4 5 6 7\nend\nincomplete\n");
}

TEST(FrdReader, TakesDosLineEndsAndASecondModelLine) {
  std::string dos;
  for (const char c : std::string("    1C\n") + kMesh + " 9999\n") {
    dos += c == '\n' ? std::string("\r\n") : std::string(1, c);
  }
  const std::string events = std::string(kMeshEvents) + "complete\n";
  EXPECT_EQ(ReadEventsOf(dos), "model \n" + events.substr(events.find('\n') + 1));
}

class FrdReaderFiles : public testing::TestWithParam<const char*> {};

// Whatever a chunk cuts apart, the events are the same.
TEST_P(FrdReaderFiles, DoNotDependOnTheChunkSize) {
  const std::filesystem::path path = DataFile(GetParam());
  const std::string whole = ReadEvents(path);
  EXPECT_NE(whole.find("\ncomplete\n"), std::string::npos);
  for (const std::size_t chunk : {1U, 2U, 13U, 64U, 1000U, 4096U}) {
    FrdReadOptions options;
    options.chunkBytes = chunk;
    ASSERT_EQ(ReadEvents(path, options), whole) << chunk;
  }
}

INSTANTIATE_TEST_SUITE_P(Frd, FrdReaderFiles,
                         testing::Values("cantilever_binary.frd", "elements.frd", "harmonic.frd"));

}  // namespace
}  // namespace qelta::test
