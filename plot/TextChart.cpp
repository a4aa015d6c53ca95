#include "TextChart.h"

#include <algorithm>
#include <cmath>

#include "Axis.h"
#include "ChartPainter.h"
#include "Utf8.h"

namespace qelta {
namespace {

std::string Padded(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, CharactersIn(text)), ' ') + text;
}

std::string Centred(const std::string& text, std::size_t width) {
  return Padded(text, (width + CharactersIn(text)) / 2);
}

std::string Fitting(const std::string& text, std::size_t width, bool isUnicode) {
  if (CharactersIn(text) <= width) return text;
  const std::string end = isUnicode ? "…" : "...";
  return FirstCharacters(text, width - CharactersIn(end)) + end;
}

// Cells of characters with finer dots in them.
class Raster {
 public:
  Raster(std::size_t columns, std::size_t rows, bool isUnicode)
      : m_Columns(columns),
        m_Rows(rows),
        m_Across(isUnicode ? 2 : 1),
        m_Down(isUnicode ? 4 : 1),
        m_Dots(columns * rows),
        m_Letters(columns * rows, ' ') {}

  // Places from 0 to 1, the second one upwards.
  void DrawLine(double x0, double y0, double x1, double y1, char letter) {
    const double dx = Dots(m_Columns * m_Across, x1 - x0);
    const double dy = Dots(m_Rows * m_Down, y1 - y0);
    const int steps = static_cast<int>(std::ceil(std::max(std::abs(dx), std::abs(dy)))) + 1;
    for (int i = 0; i <= steps; ++i) {
      const double part = static_cast<double>(i) / steps;
      SetDot(x0 + (x1 - x0) * part, y0 + (y1 - y0) * part, letter);
    }
  }

  void SetLetter(double x, double y, char letter) {
    const std::size_t column = Cell(m_Columns, x), row = Cell(m_Rows, 1 - y);
    m_Letters[row * m_Columns + column] = letter;
  }

  std::string RowText(std::size_t row) const {
    std::string text;
    for (std::size_t i = row * m_Columns; i < (row + 1) * m_Columns; ++i) {
      if (m_Letters[i] != ' ') {
        text += m_Letters[i];
      } else if (m_Dots[i] == 0) {
        text += ' ';
      } else {
        text += Braille(m_Dots[i]);
      }
    }
    return text;
  }

 private:
  static double Dots(std::size_t count, double place) {
    return place * static_cast<double>(count - 1);
  }
  static std::size_t Cell(std::size_t count, double place) {
    return static_cast<std::size_t>(std::lround(Dots(count, std::clamp(place, 0.0, 1.0))));
  }

  // U+2800 and a bit for each dot.
  static std::string Braille(unsigned dots) {
    return {'\xe2', static_cast<char>(0xa0 | (dots >> 6)), static_cast<char>(0x80 | (dots & 0x3f))};
  }

  void SetDot(double x, double y, char letter) {
    const std::size_t column = Cell(m_Columns * m_Across, x);
    const std::size_t row = Cell(m_Rows * m_Down, 1 - y);
    const std::size_t cell = row / m_Down * m_Columns + column / m_Across;
    constexpr unsigned kBits[4][2] = {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};
    if (m_Across == 1) {
      m_Letters[cell] = letter;
    } else {
      m_Dots[cell] |= kBits[row % m_Down][column % m_Across];
    }
  }

  std::size_t m_Columns;
  std::size_t m_Rows;
  std::size_t m_Across;
  std::size_t m_Down;
  std::vector<unsigned> m_Dots;
  std::string m_Letters;
};

class TextPainter {
 public:
  TextPainter(const Chart& chart, const TextChartOptions& options)
      : m_Chart(chart), m_Options(options), m_Extent(ExtentOf(chart)) {}

  std::string Paint() {
    const std::size_t height = m_Options.rows - (m_Chart.title.empty() ? 4 : 5);
    const Axis y = MakeY(height);
    std::size_t labelWidth = 0;
    for (const Axis::Tick& tick : y.GetTicks()) {
      labelWidth = std::max(labelWidth, CharactersIn(tick.label));
    }
    const std::size_t width = m_Options.columns - std::min(labelWidth + 3, m_Options.columns - 10);
    const Axis x = MakeX(width);
    Raster raster(width, height, m_Options.isUnicode);
    for (std::size_t i = 0; i < m_Chart.series.size(); ++i) DrawSeries(raster, i, x, y);
    if (!m_Chart.title.empty()) AddLine(Centred(m_Chart.title, m_Options.columns));
    AddLine(LabelWith(m_Chart.yLabel, y.GetMultiplier()));
    AddRows(raster, y, labelWidth, height);
    AddAcross(x, labelWidth + 1, width);
    AddLegend();
    return m_Text;
  }

 private:
  Axis::Options CommonOptions(bool isLog) const {
    Axis::Options options;
    options.isLog = isLog;
    options.notation = m_Options.isUnicode ? Axis::Notation::Rich : Axis::Notation::Plain;
    return options;
  }

  Axis MakeY(std::size_t height) const {
    Axis::Options options = CommonOptions(m_Chart.isLogY);
    options.endsAtTicks = true;
    options.mostTicks = std::clamp<std::size_t>(height / 3, 2, 9);
    return Axis(m_Extent.lowY, m_Extent.highY, options);
  }

  Axis MakeX(std::size_t width) const {
    Axis::Options options = CommonOptions(m_Chart.isLogX);
    options.isWhole = m_Chart.hasWholeX;
    options.mostTicks = std::clamp<std::size_t>(width / 10, 2, 10);
    return Axis(m_Extent.lowX, m_Extent.highX, options);
  }

  char LetterOf(std::size_t series) const {
    if (m_Chart.series.size() == 1) return '*';
    if (series >= 52) return '*';
    return static_cast<char>(series < 26 ? 'A' + series : 'a' + (series - 26));
  }

  // In Braille, letters stand here and there on lines of several series, and on single points.
  void DrawSeries(Raster& raster, std::size_t i, const Axis& x, const Axis& y) const {
    const ChartSeries& series = m_Chart.series[i];
    const char letter = LetterOf(i);
    const auto placeX = [&](std::size_t k) { return x.PlaceOf(series.x[k]); };
    const auto placeY = [&](std::size_t k) { return y.PlaceOf(series.y[k]); };
    for (const ChartRun& run : RunsOf(series)) {
      for (std::size_t k = run.first; k + 1 < run.last; ++k) {
        raster.DrawLine(placeX(k), placeY(k), placeX(k + 1), placeY(k + 1), letter);
      }
      const bool isPoint = run.last - run.first == 1;
      if (!isPoint && m_Chart.series.size() == 1) continue;
      constexpr std::size_t kLetters = 6;
      const std::size_t stride = (run.last - run.first) / kLetters + 1;
      for (std::size_t k = run.first + i % stride; k < run.last; k += stride) {
        raster.SetLetter(placeX(k), placeY(k), letter);
      }
    }
  }

  void AddLine(const std::string& text) {
    m_Text += Fitting(text, m_Options.columns, m_Options.isUnicode) + "\n";
  }

  void AddRows(const Raster& raster, const Axis& y, std::size_t labelWidth, std::size_t height) {
    std::vector<std::string> labels(height);
    for (const Axis::Tick& tick : y.GetTicks()) {
      const double place = (1 - y.PlaceOf(tick.value)) * static_cast<double>(height - 1);
      labels[static_cast<std::size_t>(std::lround(place))] = tick.label;
    }
    for (std::size_t row = 0; row < height; ++row) {
      const bool isTick = !labels[row].empty();
      std::string line = Padded(labels[row], labelWidth);
      line += m_Options.isUnicode ? (isTick ? " ┤" : " │") : (isTick ? " +" : " |");
      line += raster.RowText(row);
      m_Text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
  }

  void AddAcross(const Axis& x, std::size_t indent, std::size_t width) {
    std::vector<bool> isTick(width);
    std::string labels;
    for (const Axis::Tick& tick : x.GetTicks()) {
      const double place = x.PlaceOf(tick.value) * static_cast<double>(width - 1);
      const auto column = static_cast<std::size_t>(std::lround(place));
      isTick[column] = true;
      const std::size_t length = CharactersIn(tick.label);
      const std::size_t middle = indent + 1 + column, used = CharactersIn(labels);
      const std::size_t start =
          std::min(middle - std::min(middle, length / 2), m_Options.columns - length);
      if (start > used || used == 0) labels += Padded(tick.label, start + length - used);
    }
    std::string line = std::string(indent, ' ') + (m_Options.isUnicode ? "└" : "+");
    for (std::size_t i = 0; i < width; ++i) {
      line += m_Options.isUnicode ? (isTick[i] ? "┴" : "─") : (isTick[i] ? "+" : "-");
    }
    m_Text += line + "\n" + labels + "\n";
    const std::string label = LabelWith(m_Chart.xLabel, x.GetMultiplier());
    if (!label.empty()) AddLine(std::string(indent, ' ') + Centred(label, width));
  }

  void AddLegend() {
    if (m_Chart.series.size() == 1) return;
    for (std::size_t i = 0; i < m_Chart.series.size(); ++i) {
      AddLine(std::string("  ") + LetterOf(i) + "  " + m_Chart.series[i].name);
    }
  }

  const Chart& m_Chart;
  const TextChartOptions& m_Options;
  ChartExtent m_Extent;
  std::string m_Text;
};

}  // namespace

std::string DrawTextChart(const Chart& chart, const TextChartOptions& options) {
  return TextPainter(chart, options).Paint();
}

}  // namespace qelta
