#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "FED_ApplicationTerminator.h"
#include "FED_LogMacros.h"
#include "FailingAllocation.h"
#include "LogLines.h"

namespace {

class LogTest : public testing::Test {
 protected:
  ~LogTest() override { FED_LogMacros::SetSink(nullptr, nullptr); }

  template <class Action>
  static std::string StandardErrorOf(Action action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
  }
};

TEST_F(LogTest, SinkGetsEverythingUntilTheDefaultIsBack) {
  qelta::test::LogLines log;
  FED_LogMacros::log_msg(static_cast<FED_LogMacros::LogMsgType>(7), "a/b.cpp", 12, "|%P|M|C",
                         "matched %Iu\n blocks of %s", std::uint64_t{1} << 33, "%d");
  FED_LogMacros::log_msg(FED_LogMacros::LOG_FAILURE, nullptr, 0, nullptr, nullptr);
  FED_LogMacros::SetSink(nullptr, &log);
  EXPECT_NE(
      StandardErrorOf([] { FED_LogMacros::log_msg(FED_LogMacros::LOG_FAILURE, "f", 1, "l", "x"); }),
      "");
  ASSERT_EQ(log.lines.size(), 2u);
  EXPECT_EQ(log.lines[0].type, FED_LogMacros::LOG_REPORT);
  EXPECT_EQ(log.lines[0].file, "a/b.cpp");
  EXPECT_EQ(log.lines[0].line, 12);
  EXPECT_EQ(log.lines[0].location, "|%P|M|C");
  EXPECT_EQ(log.lines[0].text, "matched 8589934592\n blocks of %d");
  EXPECT_EQ(log.lines[1].text, "");
}

TEST_F(LogTest, DefaultSinkWritesOneLine) {
  struct Row {
    int type;
    const char* file;
    const char* text;
    const char* expected;
  };
  const Row rows[] = {
      {1, "src/a.cpp", "simple", "failure a.cpp:3 |%P|M|C: simple\n"},
      {2, "C:\\src\\a.cpp", "on a drive", "warning a.cpp:3 |%P|M|C: on a drive\n"},
      {7, "a.cpp", "key:\n  A = 1 \n  is\tabsent\n",
       "report a.cpp:3 |%P|M|C: key: A = 1 is absent\n"},
      {7, "a.cpp", "100 % of  two", "report a.cpp:3 |%P|M|C: 100 % of  two\n"},
      {1, "a.cpp", "\r\n\x1b[31mred", "failure a.cpp:3 |%P|M|C: [31mred\n"},
      {-9, "a.cpp", "gr\xc3\xbc\xc3\x9f", "message -9 a.cpp:3 |%P|M|C: gr\xc3\xbc\xc3\x9f\n"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(StandardErrorOf([&] {
                FED_LogMacros::log_msg(static_cast<FED_LogMacros::LogMsgType>(row.type), row.file,
                                       3, "|%P|M|C", "%s", row.text);
              }),
              row.expected);
  }
}

TEST_F(LogTest, SinkMayLogAndThrow) {
  int depth = 0;
  FED_LogMacros::SetSink(
      [](void* context, FED_LogMacros::LogMsgType type, const char*, int, const char*,
         const char*) {
        if (++*static_cast<int*>(context) < 3) FED_LogMacros::log_msg(type, "f", 1, "l", "again");
        throw std::runtime_error("a sink must not throw");
      },
      &depth);
  FED_LogMacros::log_msg(FED_LogMacros::LOG_FAILURE, "f", 1, "l", "first");
  EXPECT_EQ(depth, 3);
}

TEST_F(LogTest, WithoutMemoryTheFormatIsLogged) {
  static std::string s_LastText(200, ' ');
  FED_LogMacros::SetSink([](void*, FED_LogMacros::LogMsgType, const char*, int, const char*,
                            const char* text) { s_LastText.assign(text); },
                         nullptr);
  {
    const qelta::test::FailingAllocation failing(0);
    FED_LogMacros::log_msg(FED_LogMacros::LOG_FAILURE, "f", 1, "l",
                           "a format that is longer than any short string: %s", "argument");
  }
  EXPECT_EQ(s_LastText, "a format that is longer than any short string: %s");
}

TEST_F(LogTest, DefaultSinkAndTerminatorWorkWithoutMemory) {
  const std::string lines = StandardErrorOf([] {
    const qelta::test::FailingAllocation failing(0);
    FED_LogMacros::log_msg(FED_LogMacros::LOG_FAILURE, "file_with_a_long_name.cpp", 1, "|%P|M|C",
                           "a format that is longer than any short string");
    FED_ApplicationTerminator::Terminate("true", "f.cpp", 1, "A_Function_F", nullptr);
    FED_ApplicationTerminator::Terminate(nullptr, nullptr, 0, nullptr, nullptr);
  });
  EXPECT_NE(lines.find("A_Function_F"), std::string::npos);
}

// Each sink knows the context that belongs to it: a torn pair would be seen.
struct Counter {
  int number;
  std::atomic<int> calls{0};
  std::atomic<bool> torn{false};
};

template <int number>
void Count(void* context, FED_LogMacros::LogMsgType, const char*, int, const char*, const char*) {
  Counter& counter = *static_cast<Counter*>(context);
  ++counter.calls;
  if (counter.number != number) counter.torn = true;
}

TEST_F(LogTest, SinkAndContextChangeTogether) {
  Counter one{1}, two{2};
  FED_LogMacros::SetSink(&Count<1>, &one);
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([] {
      for (int i = 0; i < 5000; ++i) {
        FED_LogMacros::log_msg(FED_LogMacros::LOG_REPORT, "f", 1, "l", "%d", i);
      }
    });
  }
  for (int i = 0; i < 2000; ++i) {
    FED_LogMacros::SetSink(&Count<2>, &two);
    FED_LogMacros::SetSink(&Count<1>, &one);
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(one.calls + two.calls, 15000);
  EXPECT_FALSE(one.torn || two.torn);
}

TEST_F(LogTest, LinesOfSeveralThreadsStayWhole) {
  const std::string lines = StandardErrorOf([] {
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
      threads.emplace_back([] {
        for (int i = 0; i < 200; ++i) {
          FED_LogMacros::log_msg(FED_LogMacros::LOG_REPORT, "f", 1, "l", "%s", "one whole line");
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
  });
  const std::string line = "report f:1 l: one whole line\n";
  std::string expected;
  for (int i = 0; i < 600; ++i) expected += line;
  EXPECT_EQ(lines, expected);
}

}  // namespace
