#pragma once

#include <cstddef>
#include <vector>

#include "Canvas.h"

namespace qelta {

/// The colours of a chart.
struct ChartTheme {
  CanvasColour background;
  CanvasColour text;
  CanvasColour frame;
  CanvasColour grid;
  CanvasColour minorGrid;
  std::vector<CanvasColour> series;

  static const ChartTheme& Light();
  static const ChartTheme& Dark();
};

/// How a series looks. Neighbours differ in colour, dashes and markers, so that they are told apart
/// without seeing colours, too.
struct SeriesStyle {
  CanvasColour colour;
  std::vector<double> dashes;       ///< for a line one unit wide
  std::vector<CanvasPoint> marker;  ///< corners around 0,0 with a radius of about 1

  static SeriesStyle Of(const ChartTheme& theme, std::size_t series);
};

}  // namespace qelta
