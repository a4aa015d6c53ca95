#include "MemoryTable.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

namespace qelta::test {
namespace {

TEST(MemoryTable, TheFirstPageGrowsWithItsRecords) {
  MemoryTable table(sizeof(std::size_t));
  for (std::size_t index = 0; index < MemoryTable::kPageRecords; ++index) {
    std::memcpy(table.Touch(index), &index, sizeof index);
    for (std::size_t i = 0; i <= index; i += 1 + index / 8) {
      ASSERT_EQ(std::memcmp(table.Find(i), &i, sizeof i), 0) << i << " of " << index;
    }
    ASSERT_FALSE(table.Has(index + 1));
  }
}

TEST(MemoryTable, RunsAreVisitedPageByPageUpToTheFirstGap) {
  MemoryTable table(4);
  const auto mark = [&table](std::size_t first, std::size_t count) {
    table.TouchRun(first, count, true, [](unsigned char*, std::size_t, std::size_t) {});
  };
  mark(1000, 2000);
  mark(3001, 10);
  mark(6144, 1);
  using Part = std::pair<std::size_t, std::size_t>;  // position in the run, records
  const struct {
    std::size_t first, count, passed;
    std::vector<Part> parts;
  } rows[] = {{1000, 24, 24, {{0, 24}}},
              {1000, 25, 25, {{0, 24}, {24, 1}}},
              {1023, 1026, 1026, {{0, 1}, {1, 1024}, {1025, 1}}},
              {2990, 20, 10, {{0, 10}}},
              {3000, 5, 0, {}},
              {3001, 64, 10, {{0, 10}}},
              {5000, 5, 0, {}},           // a page that is not there
              {6144, 2000, 1, {{0, 1}}},  // the last page and beyond
              {1u << 30, 7, 0, {}},
              {1000, 0, 0, {}}};
  for (const auto& row : rows) {
    std::vector<Part> parts;
    const auto use = [&parts](const unsigned char*, std::size_t position, std::size_t count) {
      parts.emplace_back(position, count);
    };
    EXPECT_EQ(table.VisitRun(row.first, row.count, use), row.passed) << row.first;
    EXPECT_EQ(parts, row.parts) << row.first;
  }
}

}  // namespace
}  // namespace qelta::test
