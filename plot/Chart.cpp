#include "Chart.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qelta {
namespace {

bool IsPoint(const ChartSeries& series, std::size_t i) {
  return std::isfinite(series.x[i]) && std::isfinite(series.y[i]);
}

}  // namespace

ChartExtent ExtentOf(const Chart& chart) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  ChartExtent extent = {false, kInfinity, -kInfinity, kInfinity, -kInfinity};
  for (const ChartSeries& series : chart.series) {
    for (std::size_t i = 0; i < series.x.size(); ++i) {
      if (!IsPoint(series, i)) continue;
      extent.hasPoints = true;
      extent.lowX = std::min(extent.lowX, series.x[i]);
      extent.highX = std::max(extent.highX, series.x[i]);
      extent.lowY = std::min(extent.lowY, series.y[i]);
      extent.highY = std::max(extent.highY, series.y[i]);
    }
  }
  return extent.hasPoints ? extent : ChartExtent();
}

std::size_t DropUnplaceable(Chart& chart) {
  std::size_t count = 0;
  for (ChartSeries& series : chart.series) {
    for (std::size_t i = 0; i < series.x.size(); ++i) {
      const bool isOff = (chart.isLogX && series.x[i] <= 0) || (chart.isLogY && series.y[i] <= 0);
      if (!isOff || !IsPoint(series, i)) continue;
      series.y[i] = std::numeric_limits<double>::quiet_NaN();
      ++count;
    }
  }
  return count;
}

std::vector<ChartRun> RunsOf(const ChartSeries& series) {
  std::vector<ChartRun> runs;
  bool isOpen = false;
  for (std::size_t i = 0; i < series.x.size(); ++i) {
    const bool isPoint = IsPoint(series, i);
    if (isPoint && !isOpen) runs.push_back({i, i});
    if (isPoint) runs.back().last = i + 1;
    isOpen = isPoint;
  }
  return runs;
}

}  // namespace qelta
