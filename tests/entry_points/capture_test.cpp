// Failures end inside the entry points.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <new>
#include <set>
#include <stdexcept>
#include <thread>

#include "EntryPointTable.h"
#include "FED_DataBlock_F.h"
#include "FED_DataRecord_F.h"
#include "FED_Failure.h"
#include "LogLines.h"
#include "QeltaEntryPoint.h"
#include "QeltaFortran_F.h"

namespace qelta::test {
namespace {

// A failure of somebody else's making.
class OddFailure : public FED_Exception {
 public:
  explicit OddFailure(std::int32_t status) : FED_Exception("odd", "there"), m_Status(status) {}
  FED_Exception* Clone() const override { return new OddFailure(*this); }
  std::string GetTypeName() const override { return "OddFailure"; }
  std::int32_t GetStatusCode() const override { return m_Status; }

 private:
  std::int32_t m_Status;
};

void Fail(const char* id) { FED_Failure::Throw(id, "elsewhere", "%s", "half\nis 50%s%n"); }

struct Kind {
  const char* what;
  void (*fail)();
  std::int32_t status;
  std::string id;
  std::string text;  // empty: nobody knows
};

const std::vector<Kind>& Kinds() {
  static const std::vector<Kind> kinds = {
      {"with an id", [] { Fail("123456789012"); }, -1, "123456789012", "half\nis 50%s%n"},
      {"without an id", [] { Fail(""); }, -14, "", "half\nis 50%s%n"},
      {"a status of its own", [] { throw OddFailure(7); }, 7, "", "odd"},
      {"status 0", [] { throw OddFailure(0); }, 0, "", "odd"},
      {"standard", [] { throw std::runtime_error("20%s"); }, -1, "", "20%s"},
      {"no memory", [] { throw std::bad_alloc(); }, -1, "", std::bad_alloc().what()},
      {"a number", [] { throw 5; }, -1, "", ""},
  };
  return kinds;
}

std::string LoggedText(const std::string& name, const Kind& kind) {
  if (kind.text.empty()) return "Unknown exception catched in method " + name + " \n";
  return "Failure in method " + name + " \n" + kind.text;
}

const std::map<std::string, std::string> kLocations = {
    {"FED_DataBlock_F", "|%P|QeltaDataBlock|FED_DataBlock"},
    {"FED_DataRecord_F", "|%P|QeltaDataBlock|FED_DataRecord_F"},
    {"QeltaFortran_F", "|%P|QeltaFortran|QeltaFortran_F"},
};

std::string LastErrorText() {
  std::array<char, 40> text{}, id{};
  const std::int32_t length = 40;
  LastError_Text_F(text.data(), &length, id.data(), &length);
  return {text.data(), text.size()};
}

std::string Blanked(std::string text) {
  text.resize(40, ' ');
  return text;
}

// Calls that reach a probe, which fails; true when the entry point reported that.
bool ReportsFailure(const EntryPointRow& row, const Kind& kind) {
  const FailingProbes failing(kind.fail);
  const LogLines log;
  Arguments arguments;
  Outputs marks = arguments.outputs;
  row.Run(arguments);
  if (log.lines.empty()) return false;
  if (row.name == "DataBlock_HasRecord_F") marks.integers[0][0] = 0;
  EXPECT_EQ(arguments.status, kind.status);
  EXPECT_TRUE(arguments.outputs == marks) << "an output was written";
  EXPECT_EQ(log.lines.size(), 1u);
  const LogLines::Line& line = log.lines[0];
  const bool odd = row.name == "DataRecord_GetDoubleList_F";
  EXPECT_EQ(line.text, LoggedText(odd ? "DataRecord_GetDoublList_F" : row.name, kind));
  EXPECT_EQ(line.type, FED_LogMacros::LOG_FAILURE);
  EXPECT_THAT(line.file, testing::EndsWith('/' + row.unit + ".cpp"));
  EXPECT_GT(line.line, 0);
  EXPECT_EQ(line.location, kLocations.at(row.unit));
  EXPECT_STREQ(QeltaLastFailure::MessageId(), kind.id.c_str());
  EXPECT_EQ(LastErrorText(), Blanked(kind.text.empty() ? "Unknown exception" : kind.text));
  return true;
}

// Those that only move bytes of a cursor, count or release, or make their own failures.
const std::set<std::string> kAskNoProbe = {
    "DataBlock_GetDescriptor_F", "DataRecord_GetInteger_F", "DataRecord_SetInteger_F",
    "DataRecord_GetFloat_F",     "DataRecord_SetFloat_F",   "DataRecord_GetDouble_F",
    "DataRecord_SetDouble_F",    "DataRecord_GetVector_F",  "DataRecord_SetVector_F",
    "DataRecord_GetTensor_F",    "DataRecord_SetTensor_F",  "Database_Open_F",
    "Database_Save_F",           "Database_CreateAlias_F",  "Block_GetFieldTypes_F",
    "Descriptor_GetStringLen_F", "IntArray_New_F",          "IntArray_Delete_F",
    "DoubleArray_New_F",         "DoubleArray_Delete_F",    "LastError_Text_F"};

TEST(FailureCapture, GivesStatusLogLineAndLastFailure) {
  for (const EntryPointRow& row : AllEntryPoints()) {
    if (kLocations.count(row.unit) == 0 || row.name == "Database_Save_F") continue;
    for (const Kind& kind : Kinds()) {
      SCOPED_TRACE(row.name + " with " + kind.what);
      EXPECT_EQ(ReportsFailure(row, kind), kAskNoProbe.count(row.name) == 0);
    }
  }
}

TEST(FailureCapture, KeepsTheLastFailureOfEachThread) {
  const LogLines log;
  Arguments arguments;
  std::int32_t value = 0, status = 0;
  const auto failWith = [&](const char* id) {
    const FailingProbes failing([&] { Fail(id); });
    DataBlock_GetInteger_F(&arguments.block, 0, &value, &status);
  };
  failWith("111111111111");
  std::thread([&] {
    EXPECT_STREQ(QeltaLastFailure::MessageId(), "");
    EXPECT_EQ(LastErrorText(), Blanked(""));
    failWith("222222222222");
    EXPECT_STREQ(QeltaLastFailure::MessageId(), "222222222222");
  }).join();
  EXPECT_STREQ(QeltaLastFailure::MessageId(), "111111111111");
  DataBlock_GetInteger_F(&arguments.block, 0, &value, &status);
  EXPECT_EQ(status, 0);
  EXPECT_STREQ(QeltaLastFailure::MessageId(), "111111111111") << "success forgets nothing";
}

// Reading a key cannot fail, so its capture is tried on its own.
TEST(FailureCapture, EndsTheProcessWhereThereIsNoStatus) {
  const LogLines log;
  const auto run = [](void (*fail)()) {
    RunOrEnd({"tag", "Name_F"}, "errcode != STATUS_OK", fail);
  };
  for (const Kind& kind : Kinds()) {
    if (kind.status == 0) {
      run(kind.fail);
      EXPECT_EQ(log.lines.size(), 1u) << "logged, and the process goes on";
      continue;
    }
    EXPECT_EXIT(run(kind.fail), testing::ExitedWithCode(1),
                testing::MatchesRegex("terminating: condition 'errcode != STATUS_OK' in Name_F "
                                      "\\(capture_test\\.cpp:.+\\)\n"))
        << kind.what;
  }
}

}  // namespace
}  // namespace qelta::test
