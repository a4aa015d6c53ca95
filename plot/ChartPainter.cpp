#include "ChartPainter.h"

#include <algorithm>
#include <cmath>

#include "Axis.h"
#include "ChartLegend.h"

namespace qelta {
namespace {

using Anchor = CanvasText::Anchor;

constexpr std::size_t kMostMarkers = 40;

struct Box {
  double left, top, right, bottom;
};

// Of the points in one column of pixels the first, the lowest, the highest and the last, in order.
std::vector<CanvasPoint> Thinned(const std::vector<CanvasPoint>& points) {
  constexpr std::size_t kMany = 4000;
  if (points.size() <= kMany) return points;
  std::vector<CanvasPoint> few;
  for (std::size_t begin = 0, end = 0; begin < points.size(); begin = end) {
    const double column = std::floor(points[begin].x);
    while (end < points.size() && std::floor(points[end].x) == column) ++end;
    const auto byHeight = [&points](std::size_t a, std::size_t b) {
      return points[a].y < points[b].y;
    };
    std::size_t lowest = begin, highest = begin;
    for (std::size_t i = begin; i < end; ++i) {
      lowest = std::min(lowest, i, byHeight);
      highest = std::max(highest, i, byHeight);
    }
    std::size_t kept[] = {begin, std::min(lowest, highest), std::max(lowest, highest), end - 1};
    const auto* const last = std::unique(std::begin(kept), std::end(kept));
    for (const std::size_t* i = kept; i != last; ++i) few.push_back(points[*i]);
  }
  return few;
}

class Painter {
 public:
  Painter(const Chart& chart, const ChartTheme& theme, Canvas& canvas)
      : m_Chart(chart),
        m_Theme(theme),
        m_Canvas(canvas),
        m_Extent(ExtentOf(chart)),
        m_Scale(std::clamp(std::min(canvas.GetWidth() / 800, canvas.GetHeight() / 500), 0.8, 40.0)),
        m_Font{13 * m_Scale, theme.text, Anchor::Start, false, false},
        m_Pad(12 * m_Scale) {}

  void Paint() {
    const double width = m_Canvas.GetWidth(), height = m_Canvas.GetHeight();
    m_Canvas.FillPolygon({{0, 0}, {width, 0}, {width, height}, {0, height}}, m_Theme.background);
    double top = m_Pad + DrawTitle();
    const ChartLegend legend(m_Chart, m_Canvas, m_Font, width - 2 * m_Pad, height / 3);
    legend.Draw({m_Pad, top}, [this](std::size_t series, CanvasPoint from, CanvasPoint to) {
      DrawSample(series, from, to);
    });
    top += legend.GetHeight() + (legend.GetHeight() > 0 ? m_Font.size * 0.4 : 0);
    const double belowX = m_Font.size * (HasXLabel() ? 3.3 : 1.7);
    const Axis y = MakeY(height - m_Pad - belowX - top);
    m_Box = {LeftOf(y), top + m_Font.size * 0.3, width - m_Pad - m_Font.size,
             height - m_Pad - belowX};
    m_Box.right = std::max(m_Box.right, m_Box.left + 10);
    m_Box.bottom = std::max(m_Box.bottom, m_Box.top + 10);
    const Axis x = MakeX(m_Box.right - m_Box.left);
    DrawGrid(x, y);
    DrawLabels(x, y);
    for (std::size_t i = 0; i < m_Chart.series.size(); ++i) DrawSeries(i, x, y);
  }

 private:
  double Across(double place) const {
    return m_Box.left + std::clamp(place, 0.0, 1.0) * (m_Box.right - m_Box.left);
  }
  double Up(double place) const {
    return m_Box.bottom - std::clamp(place, 0.0, 1.0) * (m_Box.bottom - m_Box.top);
  }

  bool HasXLabel() const { return !m_Chart.xLabel.empty() || m_Extent.highX >= 1e5; }

  CanvasText Style(Anchor anchor) const {
    CanvasText style = m_Font;
    style.anchor = anchor;
    return style;
  }

  double DrawTitle() {
    if (m_Chart.title.empty()) return 0;
    CanvasText style = Style(Anchor::Middle);
    style.size *= 1.2;
    style.isBold = true;
    const double width = m_Canvas.GetWidth();
    const std::string text = Shortened(m_Canvas, m_Chart.title, style, width - 2 * m_Pad);
    m_Canvas.DrawText({width / 2, m_Pad + style.size * 0.8}, text, style);
    return style.size * 1.6;
  }

  Axis MakeY(double height) const {
    Axis::Options options;
    options.isLog = m_Chart.isLogY;
    options.endsAtTicks = true;
    options.mostTicks =
        static_cast<std::size_t>(std::clamp(height / (m_Font.size * 2.6), 2.0, 9.0));
    return Axis(m_Extent.lowY, m_Extent.highY, options);
  }

  double WidestLabel(const Axis& axis) const {
    double widest = 0;
    for (const Axis::Tick& tick : axis.GetTicks()) {
      widest = std::max(widest, m_Canvas.WidthOf(tick.label, m_Font));
    }
    return widest;
  }

  // As many ticks as their labels leave room for.
  Axis MakeX(double width) const {
    Axis::Options options;
    options.isLog = m_Chart.isLogX;
    options.isWhole = m_Chart.hasWholeX;
    for (options.mostTicks = 11; options.mostTicks > 2; --options.mostTicks) {
      Axis axis(m_Extent.lowX, m_Extent.highX, options);
      const auto count = static_cast<double>(axis.GetTicks().size());
      if (count * (WidestLabel(axis) + m_Font.size * 1.2) <= width) return axis;
    }
    return Axis(m_Extent.lowX, m_Extent.highX, options);
  }

  double LeftOf(const Axis& y) const {
    const bool hasLabel = !LabelWith(m_Chart.yLabel, y.GetMultiplier()).empty();
    return m_Pad + WidestLabel(y) + m_Font.size * (hasLabel ? 2.4 : 0.6);
  }

  void DrawAcross(double place, CanvasColour colour) {
    m_Canvas.DrawLine({{m_Box.left, Up(place)}, {m_Box.right, Up(place)}}, {colour, m_Scale, {}});
  }
  void DrawUp(double place, CanvasColour colour) {
    m_Canvas.DrawLine({{Across(place), m_Box.top}, {Across(place), m_Box.bottom}},
                      {colour, m_Scale, {}});
  }

  void DrawGrid(const Axis& x, const Axis& y) {
    for (const double value : x.GetMinorTicks()) DrawUp(x.PlaceOf(value), m_Theme.minorGrid);
    for (const double value : y.GetMinorTicks()) DrawAcross(y.PlaceOf(value), m_Theme.minorGrid);
    for (const Axis::Tick& tick : x.GetTicks()) DrawUp(x.PlaceOf(tick.value), m_Theme.grid);
    for (const Axis::Tick& tick : y.GetTicks()) DrawAcross(y.PlaceOf(tick.value), m_Theme.grid);
    m_Canvas.DrawLine(
        {{m_Box.left, m_Box.top}, {m_Box.left, m_Box.bottom}, {m_Box.right, m_Box.bottom}},
        {m_Theme.frame, 1.2 * m_Scale, {}});
  }

  void DrawLabels(const Axis& x, const Axis& y) {
    const double size = m_Font.size;
    for (const Axis::Tick& tick : x.GetTicks()) {
      m_Canvas.DrawText({Across(x.PlaceOf(tick.value)), m_Box.bottom + size * 1.3}, tick.label,
                        Style(Anchor::Middle));
    }
    for (const Axis::Tick& tick : y.GetTicks()) {
      m_Canvas.DrawText({m_Box.left - size * 0.5, Up(y.PlaceOf(tick.value)) + size * 0.36},
                        tick.label, Style(Anchor::End));
    }
    DrawAxisLabel({(m_Box.left + m_Box.right) / 2, m_Box.bottom + size * 3},
                  m_Box.right - m_Box.left, LabelWith(m_Chart.xLabel, x.GetMultiplier()), false);
    DrawAxisLabel({m_Pad + size * 0.8, (m_Box.top + m_Box.bottom) / 2}, m_Box.bottom - m_Box.top,
                  LabelWith(m_Chart.yLabel, y.GetMultiplier()), true);
  }

  void DrawAxisLabel(CanvasPoint place, double room, const std::string& text, bool isUpwards) {
    if (text.empty()) return;
    CanvasText style = Style(Anchor::Middle);
    style.isUpwards = isUpwards;
    m_Canvas.DrawText(place, Shortened(m_Canvas, text, style, room), style);
  }

  CanvasStroke StrokeOf(const SeriesStyle& style) const {
    CanvasStroke stroke = {style.colour, 2 * m_Scale, style.dashes};
    for (double& dash : stroke.dashes) dash *= stroke.width;
    return stroke;
  }

  void DrawMarker(CanvasPoint place, const SeriesStyle& style) {
    std::vector<CanvasPoint> corners = style.marker;
    for (CanvasPoint& corner : corners) {
      corner.x = place.x + corner.x * 3.6 * m_Scale;
      corner.y = place.y + corner.y * 3.6 * m_Scale;
    }
    m_Canvas.FillPolygon(corners, style.colour);
  }

  bool HasMarkers(const ChartSeries& series) const { return series.x.size() <= kMostMarkers; }

  void DrawSample(std::size_t i, CanvasPoint from, CanvasPoint to) {
    const SeriesStyle style = SeriesStyle::Of(m_Theme, i);
    m_Canvas.DrawLine({from, to}, StrokeOf(style));
    if (HasMarkers(m_Chart.series[i])) DrawMarker({(from.x + to.x) / 2, from.y}, style);
  }

  void DrawSeries(std::size_t i, const Axis& x, const Axis& y) {
    const ChartSeries& series = m_Chart.series[i];
    const SeriesStyle style = SeriesStyle::Of(m_Theme, i);
    m_Canvas.BeginGroup(series.name);
    for (const ChartRun& run : RunsOf(series)) {
      std::vector<CanvasPoint> points;
      for (std::size_t k = run.first; k < run.last; ++k) {
        points.push_back({Across(x.PlaceOf(series.x[k])), Up(y.PlaceOf(series.y[k]))});
      }
      if (points.size() > 1) m_Canvas.DrawLine(Thinned(points), StrokeOf(style));
      if (!HasMarkers(series) && points.size() > 1) continue;
      for (const CanvasPoint& point : points) DrawMarker(point, style);
    }
    m_Canvas.EndGroup();
  }

  const Chart& m_Chart;
  const ChartTheme& m_Theme;
  Canvas& m_Canvas;
  ChartExtent m_Extent;
  double m_Scale;
  CanvasText m_Font;
  double m_Pad;
  Box m_Box{};
};

}  // namespace

void PaintChart(const Chart& chart, const ChartTheme& theme, Canvas& canvas) {
  Painter(chart, theme, canvas).Paint();
}

std::string LabelWith(const std::string& label, const std::string& multiplier) {
  if (multiplier.empty()) return label;
  return label.empty() ? multiplier : label + " (" + multiplier + ")";
}

}  // namespace qelta
