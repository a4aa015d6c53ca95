#pragma once

#include <cstddef>
#include <string>

#include "Chart.h"

namespace qelta {

struct TextChartOptions {
  std::size_t columns = 80;  ///< at least kLeastColumns
  std::size_t rows = 24;     ///< without the legend; at least kLeastRows
  bool isUnicode = true;     ///< lines of Braille dots; else letters of ASCII

  static constexpr std::size_t kLeastColumns = 40;
  static constexpr std::size_t kLeastRows = 8;
};

/// A chart that has points, in characters of equal width. Several series are marked by letters.
std::string DrawTextChart(const Chart& chart, const TextChartOptions& options);

}  // namespace qelta
