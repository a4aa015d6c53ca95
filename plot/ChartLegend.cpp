#include "ChartLegend.h"

#include <algorithm>
#include <cmath>

#include "Utf8.h"

namespace qelta {
namespace {

// In units of the text size.
constexpr double kRowHeight = 1.55;
constexpr double kSample = 2.6;
constexpr double kGap = 0.5;
constexpr double kBetween = 1.6;

}  // namespace

std::string Shortened(Canvas& canvas, const std::string& text, const CanvasText& style,
                      double room) {
  if (canvas.WidthOf(text, style) <= room) return text;
  std::size_t fits = 0, tooMany = CharactersIn(text);
  const auto cut = [&text](std::size_t count) { return FirstCharacters(text, count) + "…"; };
  while (fits + 1 < tooMany) {
    const std::size_t middle = (fits + tooMany) / 2;
    (canvas.WidthOf(cut(middle), style) <= room ? fits : tooMany) = middle;
  }
  return cut(fits);
}

ChartLegend::ChartLegend(const Chart& chart, Canvas& canvas, const CanvasText& style, double width,
                         double height)
    : m_Chart(chart), m_Canvas(canvas), m_Style(style) {
  const std::size_t count = chart.series.size();
  if (count < 2) return;
  const double size = style.size;
  for (const ChartSeries& series : chart.series) {
    m_ColumnWidth = std::max(m_ColumnWidth, canvas.WidthOf(series.name, style));
  }
  m_ColumnWidth = std::min(m_ColumnWidth + (kSample + kGap + kBetween) * size, width);
  m_Columns = static_cast<std::size_t>((width + kBetween * size) / m_ColumnWidth);
  const double rows = std::max(std::floor(height / (kRowHeight * size)), 1.0);
  const std::size_t places = std::max<std::size_t>(m_Columns * static_cast<std::size_t>(rows), 2);
  m_Shown = count <= places ? count : places - 1;
}

double ChartLegend::GetHeight() const {
  const std::size_t places = m_Shown + (m_Shown < m_Chart.series.size() ? 1 : 0);
  if (m_Shown == 0) return 0;
  const std::size_t rows = (places + m_Columns - 1) / m_Columns;
  return static_cast<double>(rows) * kRowHeight * m_Style.size;
}

void ChartLegend::Draw(CanvasPoint corner, const DrawSample& drawSample) const {
  const double size = m_Style.size;
  const auto placeOf = [&](std::size_t i) {
    const std::size_t row = i / m_Columns, column = i % m_Columns;
    return CanvasPoint{corner.x + static_cast<double>(column) * m_ColumnWidth,
                       corner.y + (static_cast<double>(row) * kRowHeight + 1) * size};
  };
  const double indent = (kSample + kGap) * size;
  for (std::size_t i = 0; i < m_Shown; ++i) {
    const CanvasPoint place = placeOf(i);
    const double middle = place.y - size * 0.36;
    drawSample(i, {place.x, middle}, {place.x + kSample * size, middle});
    m_Canvas.DrawText({place.x + indent, place.y},
                      Shortened(m_Canvas, m_Chart.series[i].name, m_Style, m_ColumnWidth - indent),
                      m_Style);
  }
  const std::size_t rest = m_Chart.series.size() - m_Shown;
  if (m_Shown == 0 || rest == 0) return;
  m_Canvas.DrawText(placeOf(m_Shown), "and " + std::to_string(rest) + " more", m_Style);
}

}  // namespace qelta
