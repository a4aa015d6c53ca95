#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#if defined(__linux__)
#include <dlfcn.h>
#endif

#include "FED_Backtrace.h"
#include "FailingAllocation.h"

namespace {

using Backtrace = std::vector<std::string>;

[[gnu::noinline]] Backtrace AtDepth(int depth) {
  Backtrace result = depth == 0 ? FED_Backtrace::GetBacktrace() : AtDepth(depth - 1);
  // Work after the call keeps it from becoming a jump.
  result.shrink_to_fit();
  return result;
}

struct Frame {
  std::string module;
  unsigned long long offset;
};

Frame Parse(const std::string& entry) {
  const std::size_t plus = entry.rfind("+0x");
  if (plus == std::string::npos) return {"", 0};
  return {entry.substr(0, plus), std::stoull(entry.substr(plus + 3), nullptr, 16)};
}

TEST(BacktraceTest, NamesModuleAndOffsetOfEachFrame) {
  const Backtrace trace = AtDepth(3);
  ASSERT_GE(trace.size(), 4u);
  for (const std::string& entry : trace) {
    EXPECT_NE(Parse(entry).module, "") << entry;
    EXPECT_NE(Parse(entry).offset, 0u) << entry;
  }
}

TEST(BacktraceTest, DeepStacksAreCut) {
  EXPECT_EQ(AtDepth(1000).size(), 16u);
  const Backtrace deep = AtDepth(100);
  // Frames 1 and 2 are both the recursion, called from the same place.
  EXPECT_EQ(deep[1], deep[2]);
}

TEST(BacktraceTest, NoMemoryGivesAnEmptyListOrAWholeOne) {
  const std::size_t whole = FED_Backtrace::GetBacktrace().size();
  for (std::size_t allowed = 0; allowed < 40; ++allowed) {
    Backtrace trace;
    {
      const qelta::test::FailingAllocation failing(allowed);
      trace = FED_Backtrace::GetBacktrace();
    }
    EXPECT_TRUE(trace.empty() || trace.size() == whole) << allowed;
  }
  EXPECT_EQ(FED_Backtrace::GetBacktrace().size(), whole);
}

TEST(BacktraceTest, ThreadsDoNotDisturbEachOther) {
  std::vector<std::thread> threads;
  std::vector<int> wrong(4, 0);
  for (int& count : wrong) {
    threads.emplace_back([&count] {
      const Backtrace expected = AtDepth(20);
      for (int i = 0; i < 300; ++i) {
        if (AtDepth(20).size() != expected.size()) ++count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

#if defined(__linux__)

TEST(BacktraceTest, OffsetsCountFromTheLoadAddress) {
  Dl_info info;
  ASSERT_NE(dladdr(reinterpret_cast<void*>(&AtDepth), &info), 0);
  const auto start =
      reinterpret_cast<std::uintptr_t>(&AtDepth) - reinterpret_cast<std::uintptr_t>(info.dli_fbase);
  // Called through a pointer, the function itself runs, no copy that the compiler made of it.
  Backtrace (*volatile atDepth)(int) = &AtDepth;
  const Frame innermost = Parse(atDepth(0).at(0));
  EXPECT_GT(innermost.offset, start);
  EXPECT_LT(innermost.offset, start + 2000);
  EXPECT_NE(innermost.module.find("test"), std::string::npos) << innermost.module;
}

Backtrace s_FromComparison;

int Compare(const void*, const void*) {
  s_FromComparison = FED_Backtrace::GetBacktrace();
  return 0;
}

TEST(BacktraceTest, FramesOfOtherModulesBearTheirNames) {
  int values[] = {1, 2};
  std::qsort(values, 2, sizeof values[0], &Compare);
  std::string modules;
  for (const std::string& entry : s_FromComparison) modules += Parse(entry).module + ' ';
  EXPECT_NE(modules.find("libc.so"), std::string::npos) << modules;
}

#endif

}  // namespace
