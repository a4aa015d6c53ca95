#pragma once

#include <string>
#include <vector>

namespace qelta {

/// A line of a chart. Points with a coordinate that is no finite number break it.
struct ChartSeries {
  std::string name;
  std::vector<double> x;
  std::vector<double> y;  ///< as many
};

/// What a chart shows, whatever draws it. Texts are UTF-8.
struct Chart {
  std::string title;
  std::string xLabel;
  std::string yLabel;
  bool isLogX = false;
  bool isLogY = false;
  bool hasWholeX = false;  ///< x counts something: no ticks between integers
  std::vector<ChartSeries> series;
};

/// The extent of the finite points of a chart; `hasPoints` is false when there are none.
struct ChartExtent {
  bool hasPoints = false;
  double lowX = 0;
  double highX = 0;
  double lowY = 0;
  double highY = 0;
};
ChartExtent ExtentOf(const Chart& chart);

/// Turns points that have no place on the chart's logarithmic axes into breaks of their lines;
/// returns their number.
std::size_t DropUnplaceable(Chart& chart);

/// The unbroken runs of a series: points from `first` to before `last`.
struct ChartRun {
  std::size_t first;
  std::size_t last;
};
std::vector<ChartRun> RunsOf(const ChartSeries& series);

}  // namespace qelta
