#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "Canvas.h"
#include "Chart.h"
#include "ChartTheme.h"

namespace qelta {

/// `text`, cut so that it is at most `room` wide, with an ellipsis at its end then.
std::string Shortened(Canvas& canvas, const std::string& text, const CanvasText& style,
                      double room);

/// The names of a chart's series beside samples of their lines, in rows and columns.
class ChartLegend {
 public:
  /// In the given room; what exceeds it is counted in the last place. Empty for a single series.
  /// The chart and the canvas must outlive this object.
  ChartLegend(const Chart& chart, Canvas& canvas, const CanvasText& style, double width,
              double height);

  double GetHeight() const;

  /// Draws a sample between two places on the middle of a line of text.
  using DrawSample = std::function<void(std::size_t series, CanvasPoint from, CanvasPoint to)>;
  void Draw(CanvasPoint corner, const DrawSample& drawSample) const;

 private:
  const Chart& m_Chart;
  Canvas& m_Canvas;
  CanvasText m_Style;
  double m_ColumnWidth = 0;
  std::size_t m_Columns = 1;
  std::size_t m_Shown = 0;  // series, without the place that counts the others
};

}  // namespace qelta
