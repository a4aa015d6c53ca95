#include <Axis.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qelta::test {
namespace {

struct AxisCase {
  double lowest, highest;
  const char* flags;  // l: logarithmic, w: whole, e: ends at ticks, p: plain
  std::size_t most;
  const char* labels;
  const char* multiplier;
};

const AxisCase kCases[] = {
    {0, 10, "e", 5, "0 2 4 6 8 10", ""},
    {0.13, 0.87, "e", 8, "0.1 0.2 0.3 0.4 0.5 0.6 0.7 0.8 0.9", ""},
    {-3, 7, "e", 4, "-5 0 5 10", ""},
    {1, 60, "w", 11, "0 10 20 30 40 50 60", ""},
    {1, 3, "w", 10, "1 2 3", ""},
    {1, 3, "", 10, "1.0 1.2 1.4 1.6 1.8 2.0 2.2 2.4 2.6 2.8 3.0", ""},
    {5, 5, "w", 10, "4 5 6", ""},
    {0, 0, "e", 4, "-1.0 -0.5 0.0 0.5 1.0", ""},
    {1.2e6, 1.26e6, "e", 6, "1.20 1.21 1.22 1.23 1.24 1.25 1.26", "×10⁶"},
    {0, 2.4e-4, "e", 3, "0 100 200 300", "×10⁻⁶"},
    {0, 2.4e-4, "ep", 3, "0 100 200 300", "x1e-6"},
    {0.02, 700, "le", 9, "0.01 0.1 1 10 100 1000", ""},
    {3e-7, 2e-5, "le", 9, "10⁻⁷ 10⁻⁶ 10⁻⁵ 10⁻⁴", ""},
    {3e-7, 2e-5, "lep", 9, "1e-7 1e-6 1e-5 1e-4", ""},
    {1e-8, 1e8, "le", 5, "10⁻⁸ 10⁻⁴ 10⁰ 10⁴ 10⁸", ""},
    {3, 7, "le", 4, "3 4 5 6 7", ""},
};

TEST(Axis, HasTheTicksThatPeopleExpect) {
  for (const AxisCase& one : kCases) {
    const std::string flags = one.flags;
    Axis::Options options;
    options.isLog = flags.find('l') != std::string::npos;
    options.isWhole = flags.find('w') != std::string::npos;
    options.endsAtTicks = flags.find('e') != std::string::npos;
    options.mostTicks = one.most;
    if (flags.find('p') != std::string::npos) options.notation = Axis::Notation::Plain;
    const Axis axis(one.lowest, one.highest, options);
    std::string labels;
    for (const Axis::Tick& tick : axis.GetTicks()) {
      labels += (labels.empty() ? "" : " ") + tick.label;
      EXPECT_TRUE(-1e-9 <= axis.PlaceOf(tick.value) && axis.PlaceOf(tick.value) <= 1 + 1e-9);
    }
    EXPECT_EQ(labels, one.labels) << one.lowest << ".." << one.highest << " " << flags;
    EXPECT_EQ(axis.GetMultiplier(), one.multiplier);
    EXPECT_TRUE(axis.GetLow() <= one.lowest && one.highest <= axis.GetHigh());
  }
}

TEST(Axis, StandsTheWidestAndTheNarrowestRanges) {
  const double most = std::numeric_limits<double>::max();
  const double least = std::numeric_limits<double>::denorm_min();
  const double ranges[][2] = {{-most, most}, {least, 2 * least},        {least, most},
                              {most, most},  {1, std::nextafter(1, 2)}, {-most, -most}};
  for (const auto& range : ranges) {
    for (const bool isLog : {false, true}) {
      if (isLog && range[0] <= 0) continue;
      Axis::Options options;
      options.isLog = isLog;
      options.endsAtTicks = true;
      const Axis axis(range[0], range[1], options);
      EXPECT_TRUE(std::isfinite(axis.PlaceOf(axis.GetLow() / 2 + axis.GetHigh() / 2)));
      EXPECT_GE(axis.GetTicks().size(), 2u) << range[0] << " " << range[1] << " " << isLog;
      EXPECT_LE(axis.GetTicks().size(), 2 * options.mostTicks);
    }
  }
}

TEST(Axis, MarksWholeDecades) {
  Axis::Options options;
  options.isLog = options.endsAtTicks = true;
  const Axis axis(2, 800, options);
  EXPECT_EQ(axis.GetMinorTicks().size(), 24u);
  EXPECT_DOUBLE_EQ(axis.PlaceOf(10), 1.0 / 3);
}

}  // namespace
}  // namespace qelta::test
