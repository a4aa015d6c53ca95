#include "ChartTheme.h"

#include <cmath>

namespace qelta {
namespace {

std::vector<CanvasPoint> RegularPolygon(int corners, double turn, double radius) {
  constexpr double kTwoPi = 6.28318530717958647692;
  std::vector<CanvasPoint> polygon;
  for (int i = 0; i < corners; ++i) {
    const double angle = (i + turn) * kTwoPi / corners - kTwoPi / 4;
    polygon.push_back({radius * std::cos(angle), radius * std::sin(angle)});
  }
  return polygon;
}

}  // namespace

// Colours by Okabe and Ito; yellow does not show on white, nor blue on black.
const ChartTheme& ChartTheme::Light() {
  static const ChartTheme kTheme = {{255, 255, 255},
                                    {34, 34, 34},
                                    {110, 110, 110},
                                    {222, 222, 222},
                                    {240, 240, 240},
                                    {{0, 114, 178},
                                     {213, 94, 0},
                                     {0, 158, 115},
                                     {204, 121, 167},
                                     {230, 159, 0},
                                     {86, 180, 233},
                                     {34, 34, 34}}};
  return kTheme;
}

const ChartTheme& ChartTheme::Dark() {
  static const ChartTheme kTheme = {{27, 29, 33},
                                    {230, 230, 230},
                                    {150, 150, 150},
                                    {62, 65, 71},
                                    {43, 46, 51},
                                    {{86, 180, 233},
                                     {230, 159, 0},
                                     {0, 178, 130},
                                     {221, 145, 185},
                                     {240, 228, 66},
                                     {230, 115, 40},
                                     {230, 230, 230}}};
  return kTheme;
}

SeriesStyle SeriesStyle::Of(const ChartTheme& theme, std::size_t series) {
  static const std::vector<double> kDashes[] = {{}, {5, 2}, {1.5, 1.5}, {6, 2, 1.5, 2}, {9, 3}};
  static const std::vector<CanvasPoint> kMarkers[] = {
      RegularPolygon(16, 0, 1),   RegularPolygon(4, 0.5, 1.2), RegularPolygon(3, 0, 1.4),
      RegularPolygon(4, 0, 1.35), RegularPolygon(3, 0.5, 1.4), RegularPolygon(6, 0, 1.1)};
  return {theme.series[series % theme.series.size()], kDashes[series % std::size(kDashes)],
          kMarkers[series % std::size(kMarkers)]};
}

}  // namespace qelta
