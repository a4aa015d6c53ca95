#include "SvgCanvas.h"

#include <cmath>
#include <cstdio>

#include "Utf8.h"

namespace qelta {
namespace {

// Hundredths of the text size, of the characters from blank to tilde.
constexpr std::uint8_t kWidths[] = {
    32, 40, 46, 84, 64, 95, 78, 27, 39,  39, 50, 84, 32, 36, 32, 34, 64, 64, 64, 64, 64, 64, 64, 64,
    64, 64, 34, 34, 84, 84, 84, 53, 100, 68, 69, 70, 77, 63, 58, 77, 75, 29, 29, 66, 56, 86, 75, 79,
    60, 79, 69, 63, 61, 73, 68, 99, 69,  61, 69, 39, 34, 39, 84, 50, 50, 61, 63, 55, 63, 62, 35, 63,
    63, 28, 28, 58, 28, 97, 63, 61, 63,  63, 41, 52, 39, 63, 59, 82, 59, 59, 52, 64, 34, 64, 84};
constexpr std::uint8_t kOtherWidth = 70;
constexpr double kBold = 1.1;

// At most two decimals, without zeros at the end.
std::string Number(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", value);
  std::string number = text;
  number.erase(number.find_last_not_of('0') + 1);
  if (number.back() == '.') number.pop_back();
  return number == "-0" ? "0" : number;
}

std::string Hex(CanvasColour colour) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02x%02x%02x", colour.red, colour.green, colour.blue);
  return text;
}

std::string Escape(const std::string& text) {
  std::string escaped;
  for (const char c : CleanText(text)) {
    if (c == '&') {
      escaped += "&amp;";
    } else if (c == '<') {
      escaped += "&lt;";
    } else if (c == '>') {
      escaped += "&gt;";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string PointList(const std::vector<CanvasPoint>& points) {
  std::string list;
  for (const CanvasPoint& point : points) {
    list += (list.empty() ? "" : " ") + Number(point.x) + "," + Number(point.y);
  }
  return list;
}

}  // namespace

SvgCanvas::SvgCanvas(double width, double height, const std::string& title)
    : Canvas(width, height) {
  const std::string w = Number(width), h = Number(height);
  m_Content =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
      "width=\"" +
      w + "\" height=\"" + h + "\" viewBox=\"0 0 " + w + " " + h +
      "\" font-family=\"'DejaVu Sans', Verdana, sans-serif\" role=\"img\">\n";
  if (!title.empty()) m_Content += "<title>" + Escape(title) + "</title>\n";
}

void SvgCanvas::DrawLine(const std::vector<CanvasPoint>& points, const CanvasStroke& stroke) {
  m_Content += "<polyline fill=\"none\" stroke=\"" + Hex(stroke.colour) + "\" stroke-width=\"" +
               Number(stroke.width) + "\" stroke-linejoin=\"round\"";
  std::string dashes;
  for (const double dash : stroke.dashes) dashes += (dashes.empty() ? "" : " ") + Number(dash);
  if (!dashes.empty()) m_Content += " stroke-dasharray=\"" + dashes + "\"";
  m_Content += " points=\"" + PointList(points) + "\"/>\n";
}

void SvgCanvas::FillPolygon(const std::vector<CanvasPoint>& corners, CanvasColour colour) {
  m_Content += "<polygon fill=\"" + Hex(colour) + "\" points=\"" + PointList(corners) + "\"/>\n";
}

void SvgCanvas::DrawText(CanvasPoint place, const std::string& text, const CanvasText& style) {
  const std::string x = Number(place.x), y = Number(place.y);
  m_Content += "<text x=\"" + x + "\" y=\"" + y + "\" font-size=\"" + Number(style.size) +
               "\" fill=\"" + Hex(style.colour) + "\"";
  if (style.anchor != CanvasText::Anchor::Start) {
    const bool isMiddle = style.anchor == CanvasText::Anchor::Middle;
    m_Content += std::string(" text-anchor=\"") + (isMiddle ? "middle" : "end") + "\"";
  }
  if (style.isBold) m_Content += " font-weight=\"bold\"";
  if (style.isUpwards) m_Content += " transform=\"rotate(-90 " + x + " " + y + ")\"";
  m_Content += ">" + Escape(text) + "</text>\n";
}

double SvgCanvas::WidthOf(const std::string& text, const CanvasText& style) {
  double hundredths = 0;
  for (const char c : text) {
    const bool isContinuation = (static_cast<unsigned char>(c) & 0xc0) == 0x80;
    const bool isKnown = ' ' <= c && c <= '~';
    hundredths += isContinuation ? 0 : isKnown ? kWidths[c - ' '] : kOtherWidth;
  }
  return hundredths / 100 * style.size * (style.isBold ? kBold : 1);
}

void SvgCanvas::BeginGroup(const std::string& name) {
  m_Content += "<g><title>" + Escape(name) + "</title>\n";
}

void SvgCanvas::EndGroup() { m_Content += "</g>\n"; }

std::string SvgCanvas::Finish() { return m_Content + "</svg>\n"; }

}  // namespace qelta
