#include <ChartPainter.h>
#include <SvgCanvas.h>
#include <TextChart.h>
#include <Utf8.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <tuple>
#include <utility>

namespace qelta::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Points = std::vector<std::pair<double, double>>;

// The lines in the groups of an SVG picture: those of the series.
std::vector<Points> LinesIn(const std::string& svg) {
  std::vector<Points> lines;
  for (std::size_t i = svg.find("<g>"); (i = svg.find("<polyline", i)) != std::string::npos; ++i) {
    const std::size_t begin = svg.find(" points=\"", i) + 9;
    std::istringstream text(svg.substr(begin, svg.find('"', begin) - begin));
    lines.emplace_back();
    char comma = 0;
    for (double x = 0, y = 0; text >> x >> comma >> y;) lines.back().emplace_back(x, y);
  }
  return lines;
}

std::size_t Count(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (std::size_t i = 0; (i = text.find(what, i)) != std::string::npos; i += what.size()) ++count;
  return count;
}

std::string SvgOf(const Chart& chart, double width = 800, double height = 500) {
  SvgCanvas canvas(width, height, chart.title);
  PaintChart(chart, ChartTheme::Light(), canvas);
  return canvas.Finish();
}

TEST(Chart, BreaksLinesWhereThereIsNoNumber) {
  Chart chart;
  chart.series = {{"gaps", {1, 2, 3, 4, 5, kNaN, 7}, {1, 2, kNaN, 4, kInfinity, 6, 7}},
                  {"<&>", {1, 7}, {0, 9}}};
  const std::string svg = SvgOf(chart);
  const std::vector<Points> lines = LinesIn(svg);
  ASSERT_EQ(lines.size(), 2u);  // 4 and 7 stand alone
  EXPECT_TRUE(lines[0].size() == 2 && lines[1].size() == 2);
  // Markers of four and two points, two samples in the legend, the background.
  EXPECT_EQ(Count(svg, "<polygon"), 4u + 2 + 2 + 1);
  EXPECT_EQ(Count(svg, "&lt;&amp;&gt;"), 2u);
}

TEST(Chart, PutsPointsWhereTheyBelong) {
  Chart chart;
  chart.series = {{"s", {0, 5, 10}, {0, 2, 10}}};
  const std::vector<Points> lines = LinesIn(SvgOf(chart));
  ASSERT_TRUE(lines.size() == 1 && lines[0].size() == 3);
  const auto [first, second, third] = std::tie(lines[0][0], lines[0][1], lines[0][2]);
  EXPECT_NEAR(second.first - first.first, third.first - second.first, 0.02);
  EXPECT_NEAR((first.second - second.second) / (first.second - third.second), 0.2, 1e-3);
}

TEST(Chart, ThinsManyPointsToTheirExtremes) {
  Chart chart;
  chart.series = {{"s", {}, {}}};
  for (int i = 0; i < 100000; ++i) {
    chart.series[0].x.push_back(i);
    chart.series[0].y.push_back(i == 5000 ? 100 : i == 77777 ? -100 : std::sin(i));
  }
  const std::vector<Points> lines = LinesIn(SvgOf(chart));
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_LT(lines[0].size(), 4u * 800);
  Chart few = chart;
  few.series[0] = {"s", {0, 5000, 77777, 99999}, {0, 100, -100, 0}};
  const Points corners = LinesIn(SvgOf(few)).at(0);
  for (const std::size_t corner : {1u, 2u}) {
    EXPECT_EQ(std::count(lines[0].begin(), lines[0].end(), corners[corner]), 1);
  }
}

TEST(Chart, LeavesOutWhatALogarithmicAxisCannotShow) {
  Chart chart;
  chart.isLogY = true;
  chart.series = {{"s", {1, 2, 3, 4}, {10, 0, -5, 1000}}};
  EXPECT_EQ(DropUnplaceable(chart), 2u);
  EXPECT_EQ(ExtentOf(chart).lowY, 10);
  chart.isLogX = true;
  chart.series = {{"s", {-1, 0}, {1, 1}}};
  EXPECT_EQ(DropUnplaceable(chart), 2u);
  EXPECT_FALSE(ExtentOf(chart).hasPoints);
}

TEST(Chart, IsDrawnInAnySizeWithAnyNumberOfSeries) {
  for (const std::size_t count : {1u, 2u, 100u}) {
    Chart chart;
    chart.title = chart.xLabel = chart.yLabel = std::string(300, 'W');
    for (std::size_t i = 0; i < count; ++i) {
      const double v = static_cast<double>(i);
      chart.series.push_back({std::string(i % 3 * 100, 'x') + "ä", {v}, {v}});
    }
    for (const double size : {80.0, 500.0, 4000.0}) {
      EXPECT_EQ(Count(SvgOf(chart, size, size), "<g>"), count);
    }
    for (const std::size_t columns : {40u, 200u}) {
      TextChartOptions options;
      options.columns = columns;
      options.rows = TextChartOptions::kLeastRows;
      const std::string text = DrawTextChart(chart, options);
      for (std::size_t begin = 0, end; begin < text.size(); begin = end + 1) {
        end = text.find('\n', begin);
        EXPECT_LE(CharactersIn(text.substr(begin, end - begin)), columns);
      }
    }
  }
}

TEST(Chart, IsDrawnInCharacters) {
  Chart chart;
  chart.yLabel = "y";
  chart.series = {{"s", {0, 1, 2}, {0, 10, 0}}};
  TextChartOptions options;
  options.columns = 40;
  options.rows = 9;
  options.isUnicode = false;
  const std::string text = DrawTextChart(chart, options);
  EXPECT_EQ(Count(text, "10 +"), 1u);
  for (const char c : text) EXPECT_TRUE(c == '\n' || (' ' <= c && c <= '~'));
  options.isUnicode = true;
  EXPECT_EQ(CleanText("a\tb\xff\xc3\xa4\xc2\x85"), "a b?\xc3\xa4 ");
  EXPECT_GT(Count(DrawTextChart(chart, options), "\xe2\xa0"), 5u);
}

}  // namespace
}  // namespace qelta::test
