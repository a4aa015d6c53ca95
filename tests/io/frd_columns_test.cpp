#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

#include "FrdColumns.h"
#include "FrdIdIndex.h"

namespace qelta {
namespace {

void ExpectLikeStrtod(const std::string& column) {
  double value = 0;
  ASSERT_TRUE(ParseFrdDouble(column, value)) << column;
  EXPECT_EQ(value, std::strtod(column.c_str(), nullptr)) << column;
}

TEST(FrdColumns, GivesTheNearestDouble) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> mantissa(-10, 10);
  std::uniform_int_distribution<int> exponent(-99, 98);
  char column[32];
  for (int i = 0; i < 20000; ++i) {
    std::snprintf(column, sizeof column, "%12.5E",
                  mantissa(random) * std::pow(10, exponent(random)));
    ExpectLikeStrtod(column);
  }
}

TEST(FrdColumns, ReadsEveryWayOfWritingANumber) {
  for (const char* column : {"1.000000000 ", " 3.374607878", "32.99202205", "117547.9305", "-1.",
                             " .5", "1e3", "   0", "1.23456E-300", "-0.00000E+00"}) {
    ExpectLikeStrtod(column);
  }
  double value = 0;
  EXPECT_TRUE(ParseFrdDouble("         NAN", value) && std::isnan(value));
  EXPECT_TRUE(ParseFrdDouble("        -INF", value) && std::isinf(value) && value < 0);
  EXPECT_TRUE(ParseFrdDouble("+1.00000E+00", value) && value == 1);
}

TEST(FrdColumns, RefusesWhatIsNoNumber) {
  double value = 0;
  for (const char* column :
       {"", "            ", " 1.00000E+0x", " 1.0000 E+00", "1.00000E+00-", " 1,00000E+00",
        "--1.0000E+00", "+-1.000E+00 ", "1.00000D+00", "A.00000E+00 ", " 1.00000E*00"}) {
    EXPECT_FALSE(ParseFrdDouble(column, value)) << column;
  }
  EXPECT_FALSE(ParseFrdDouble(std::string(" 1.0000\0E+00", 12), value));
  std::int32_t number = 0;
  for (const char* column : {"", "     ", "1 2", "1.", "2147483648", "-2147483649", "0x1", "1-"}) {
    EXPECT_FALSE(ParseFrdInteger(column, number)) << column;
  }
  EXPECT_TRUE(ParseFrdInteger("   -12 ", number) && number == -12);
}

TEST(FrdIdIndex, NumbersIdsInOrderWhateverTheirSize) {
  FrdIdIndex index;
  std::mt19937 random(3);
  std::vector<std::int32_t> ids;
  for (int i = 0; i < 5000; ++i) {
    const auto id = static_cast<std::int32_t>(random() >> (1 + random() % 31)) + 1;
    if (index.Find(id) == FrdIdIndex::kUnknown) ids.push_back(id);
    index.FindOrAdd(id);
  }
  index.FindOrAdd(2147483647);
  ASSERT_EQ(index.Count(), ids.size() + 1);
  for (std::size_t i = 0; i < ids.size(); ++i) {
    ASSERT_EQ(index.FindOrAdd(ids[i]), static_cast<std::int32_t>(i));
  }
}

}  // namespace
}  // namespace qelta
