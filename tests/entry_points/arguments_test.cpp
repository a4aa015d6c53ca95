// What every entry point does with its arguments before and after the operation.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "EntryPointTable.h"

namespace qelta::test {
namespace {

const Arguments* s_Arguments = nullptr;

void ReportAtExit() {
  std::fprintf(stderr, "status %d, %d operations", s_Arguments->status, Probes::s_Operations);
#ifdef QELTA_TEST_SANITIZED
  // Looking for leaks in each of these processes would take longer than everything else.
  std::_Exit(1);
#endif
}

TEST(EntryPoints, EndTheProcessWhenAnArgumentIsMissing) {
  Arguments arguments;
  s_Arguments = &arguments;
  Probes::s_Operations = 0;
  for (const EntryPointRow& row : AllEntryPoints()) {
    for (std::size_t i = 0; i < row.call.isAddress.size(); ++i) {
      if (!row.call.isAddress[i]) continue;
      const auto call = [&] {
        std::atexit(&ReportAtExit);
        row.Run(arguments, i);
      };
      EXPECT_EXIT(call(), testing::ExitedWithCode(1),
                  testing::MatchesRegex("terminating: condition 'true' in " + row.name + " \\(" +
                                        row.unit + "\\.cpp:.+\\)\nstatus 77, 0 operations"))
          << row.name << ", argument " << i;
    }
  }
}

// What a probe stands in for: not a storage that can be saved, nor a view.
bool TakesProbes(const EntryPointRow& row) {
  return row.name != "Database_Save_F" && row.unit != "QeltaIds_F";
}

TEST(EntryPoints, SetTheStatusToZeroOnSuccess) {
  for (const EntryPointRow& row : AllEntryPoints()) {
    if (!TakesProbes(row)) continue;
    Arguments arguments;
    row.Run(arguments);
    EXPECT_EQ(arguments.status, row.call.hasStatus ? 0 : 77) << row.name;
  }
}

TEST(EntryPoints, WidenIndicesWithTheirSign) {
  for (const EntryPointRow& row : AllEntryPoints()) {
    const bool takesAnIndex =
        row.kinds.find("object int32 ") == 0 || row.kinds.find("object int32-in ") == 0;
    if (row.unit != "FED_DataBlock_F" || !takesAnIndex) continue;
    Arguments arguments;
    arguments.number = -2;
    row.Run(arguments);
    EXPECT_EQ(arguments.block.last, ~std::uint64_t{1}) << row.name;
    EXPECT_EQ(arguments.status, 0);
  }
}

}  // namespace
}  // namespace qelta::test
