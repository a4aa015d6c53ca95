#pragma once

#include <string>

#include "Canvas.h"

namespace qelta {

/// Writes SVG. Texts stay texts; how wide they are is estimated from a table of the widths of
/// DejaVu Sans, which is wider than most.
class SvgCanvas : public Canvas {
 public:
  /// The file begins with this title.
  SvgCanvas(double width, double height, const std::string& title);

  void DrawLine(const std::vector<CanvasPoint>& points, const CanvasStroke& stroke) override;
  void FillPolygon(const std::vector<CanvasPoint>& corners, CanvasColour colour) override;
  void DrawText(CanvasPoint place, const std::string& text, const CanvasText& style) override;
  double WidthOf(const std::string& text, const CanvasText& style) override;
  void BeginGroup(const std::string& name) override;
  void EndGroup() override;
  std::string Finish() override;

 private:
  std::string m_Content;
};

}  // namespace qelta
