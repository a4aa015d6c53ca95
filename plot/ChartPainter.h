#pragma once

#include <string>

#include "Canvas.h"
#include "Chart.h"
#include "ChartTheme.h"

namespace qelta {

/// Draws a chart that has points onto a canvas: title, legend when there are several series, axes,
/// lines, and markers where points are few. Sizes of texts and lines go with that of the canvas.
/// What has no room is shortened; a legend takes a third of the height at most and says how many
/// series it leaves out. Points of a line that fall into one column of pixels are thinned to their
/// extremes.
void PaintChart(const Chart& chart, const ChartTheme& theme, Canvas& canvas);

/// A label and what its numbers are to be multiplied with: "x (×10³)".
std::string LabelWith(const std::string& label, const std::string& multiplier);

}  // namespace qelta
