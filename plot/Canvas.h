#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qelta {

struct CanvasPoint {
  double x;  ///< to the right
  double y;  ///< downwards
};

struct CanvasColour {
  std::uint8_t red;
  std::uint8_t green;
  std::uint8_t blue;
};

struct CanvasStroke {
  CanvasColour colour;
  double width;
  std::vector<double> dashes;  ///< lengths of strokes and gaps in turn; empty: a solid line
};

struct CanvasText {
  enum class Anchor { Start, Middle, End };

  double size;
  CanvasColour colour;
  Anchor anchor = Anchor::Start;
  bool isBold = false;
  bool isUpwards = false;  ///< reads from the bottom to the top
};

/// A sheet to draw on, in units of a pixel from its upper left corner. What is drawn later covers
/// what was drawn before.
class Canvas {
 public:
  Canvas(double width, double height) : m_Width(width), m_Height(height) {}
  virtual ~Canvas() = default;
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  double GetWidth() const { return m_Width; }
  double GetHeight() const { return m_Height; }

  /// A line through points, at least two.
  virtual void DrawLine(const std::vector<CanvasPoint>& points, const CanvasStroke& stroke) = 0;
  virtual void FillPolygon(const std::vector<CanvasPoint>& corners, CanvasColour colour) = 0;
  /// `place` is on the base line of the text. Control characters become blanks.
  virtual void DrawText(CanvasPoint place, const std::string& text, const CanvasText& style) = 0;

  /// How far a text reaches.
  virtual double WidthOf(const std::string& text, const CanvasText& style) = 0;

  /// What belongs together, with a name for those who cannot see it.
  virtual void BeginGroup(const std::string& /*name*/) {}
  virtual void EndGroup() {}

  /// The content of the file. Nothing may be drawn afterwards.
  virtual std::string Finish() = 0;

 private:
  double m_Width;
  double m_Height;
};

}  // namespace qelta
