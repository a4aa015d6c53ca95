#include "CairoCanvas.h"

#include <FED_Failure.h>
#include <cairo-pdf.h>
#include <cairo.h>

#include <cmath>
#include <new>

#include "Utf8.h"

namespace qelta {
namespace {

constexpr double kPi = 3.14159265358979323846;

cairo_status_t Append(void* content, const unsigned char* bytes, unsigned int count) noexcept {
  try {
    static_cast<std::string*>(content)->append(bytes, bytes + count);
    return CAIRO_STATUS_SUCCESS;
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
}

void Check(cairo_status_t status) {
  if (status == CAIRO_STATUS_SUCCESS) return;
  if (status == CAIRO_STATUS_NO_MEMORY) throw std::bad_alloc();
  FED_Failure::Throw("310000000964", "|%P|QeltaPlot|CairoCanvas",
                     "The picture could not be drawn: %s; try a smaller one.",
                     cairo_status_to_string(status));
}

class CairoCanvas : public Canvas {
 public:
  CairoCanvas(PictureFormat format, double width, double height, const std::string& title)
      : Canvas(width, height), m_Format(format) {
    if (format == PictureFormat::Pdf) {
      m_Surface.reset(cairo_pdf_surface_create_for_stream(Append, &m_Content, width, height));
      const std::string clean = CleanText(title);
      cairo_pdf_surface_set_metadata(m_Surface.get(), CAIRO_PDF_METADATA_TITLE, clean.c_str());
    } else {
      m_Surface.reset(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width),
                                                 static_cast<int>(height)));
    }
    Check(cairo_surface_status(m_Surface.get()));
    m_Context.reset(cairo_create(m_Surface.get()));
    Check(cairo_status(m_Context.get()));
    cairo_set_line_join(m_Context.get(), CAIRO_LINE_JOIN_ROUND);
  }

  void DrawLine(const std::vector<CanvasPoint>& points, const CanvasStroke& stroke) override {
    cairo_t* const context = m_Context.get();
    Trace(points);
    SetColour(stroke.colour);
    cairo_set_line_width(context, stroke.width);
    cairo_set_dash(context, stroke.dashes.data(), static_cast<int>(stroke.dashes.size()), 0);
    cairo_stroke(context);
  }

  void FillPolygon(const std::vector<CanvasPoint>& corners, CanvasColour colour) override {
    Trace(corners);
    cairo_close_path(m_Context.get());
    SetColour(colour);
    cairo_fill(m_Context.get());
  }

  void DrawText(CanvasPoint place, const std::string& text, const CanvasText& style) override {
    cairo_t* const context = m_Context.get();
    using Anchor = CanvasText::Anchor;
    const double width = style.anchor == Anchor::Start ? 0 : WidthOf(text, style);
    const double start = style.anchor == Anchor::Middle ? -width / 2 : -width;
    SetFont(style);
    SetColour(style.colour);
    cairo_save(context);
    cairo_translate(context, place.x, place.y);
    if (style.isUpwards) cairo_rotate(context, -kPi / 2);
    cairo_move_to(context, start, 0);
    cairo_show_text(context, CleanText(text).c_str());
    cairo_restore(context);
  }

  double WidthOf(const std::string& text, const CanvasText& style) override {
    SetFont(style);
    cairo_text_extents_t extents;
    cairo_text_extents(m_Context.get(), CleanText(text).c_str(), &extents);
    return extents.x_advance;
  }

  std::string Finish() override {
    Check(cairo_status(m_Context.get()));
    if (m_Format == PictureFormat::Png) {
      Check(cairo_surface_write_to_png_stream(m_Surface.get(), Append, &m_Content));
    } else {
      cairo_show_page(m_Context.get());
      cairo_surface_finish(m_Surface.get());
      Check(cairo_surface_status(m_Surface.get()));
    }
    return std::move(m_Content);
  }

 private:
  struct Release {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  };

  void Trace(const std::vector<CanvasPoint>& points) {
    cairo_new_path(m_Context.get());
    for (const CanvasPoint& point : points) cairo_line_to(m_Context.get(), point.x, point.y);
  }

  void SetColour(CanvasColour colour) {
    cairo_set_source_rgb(m_Context.get(), colour.red / 255.0, colour.green / 255.0,
                         colour.blue / 255.0);
  }

  void SetFont(const CanvasText& style) {
    cairo_select_font_face(m_Context.get(), "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                           style.isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(m_Context.get(), style.size);
  }

  PictureFormat m_Format;
  std::string m_Content;  // outlives the surface, which writes to it
  std::unique_ptr<cairo_surface_t, Release> m_Surface;
  std::unique_ptr<cairo_t, Release> m_Context;
};

}  // namespace

bool HasCairo() { return true; }

std::unique_ptr<Canvas> MakeCairoCanvas(PictureFormat format, double width, double height,
                                        const std::string& title) {
  return std::make_unique<CairoCanvas>(format, width, height, title);
}

}  // namespace qelta
