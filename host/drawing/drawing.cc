#include "host/drawing/drawing.h"

#include <cairo/cairo-svg.h>
#include <cairo/cairo.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>
#include <utility>

#include "host/base/error.h"
#include "host/files/output_file.h"

namespace kelto::host {
namespace {

constexpr const char* kFont = "sans-serif";
constexpr const char* kEllipsis = "\u2026";
/// Of a unit of an SVG drawing, the pixels of pictures that it keeps.
constexpr double kPixelsOfUnit = 2.0;

struct FreeSurface {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, FreeSurface>;

/// Lets no exception through the library that calls it.
cairo_status_t Append(void* bytes, const unsigned char* data, unsigned int size) {
  auto& to = *static_cast<std::vector<uint8_t>*>(bytes);
  try {
    to.insert(to.end(), data, data + size);
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
  return CAIRO_STATUS_SUCCESS;
}

bool IsSvg(const std::string& file) {
  if (file.empty()) return false;  // in memory only
  if (file.ends_with(".svg")) return true;
  if (file.ends_with(".png")) return false;
  throw UsageError(file + ": drawings are written to names that end in .png or .svg");
}

/// The length of the UTF-8 character at `at`, 0 when there is none.
size_t CharacterAt(const std::string& text, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
  const uint8_t first = byte(at);
  const size_t length = first < 0x80    ? 1
                        : first < 0xC2  ? 0
                        : first < 0xE0  ? 2
                        : first < 0xF0  ? 3
                        : first <= 0xF4 ? 4
                                        : 0;
  if (length == 0 || at + length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  }
  // Overlong forms, surrogates and what lies past the last character.
  const uint8_t second = length > 1 ? byte(at + 1) : 0;
  if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
      (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F)) {
    return 0;
  }
  return length;
}

/// Text that can be drawn: Cairo refuses everything after a byte that is not UTF-8.
std::string Drawable(const std::string& text) {
  std::string drawable;
  for (size_t at = 0; at < text.size();) {
    const size_t length = CharacterAt(text, at);
    const bool control = length == 1 && static_cast<uint8_t>(text[at]) < 0x20;
    drawable += length == 0 || control ? "?" : text.substr(at, length);
    at += length == 0 ? 1 : length;
  }
  return drawable;
}

}  // namespace

Libraries DrawingLibraries() { return {{"Cairo", cairo_version_string()}}; }

Drawing::Drawing(Blank, std::string file, double width, double height)
    : file_(std::move(file)), width_(width), height_(height) {}

Drawing::Drawing(const std::string& file, double width, double height)
    : Drawing(Blank{}, file, width, height) {
  surface_ = IsSvg(file) ? cairo_svg_surface_create_for_stream(Append, &svg_, width, height)
                         : cairo_image_surface_create(CAIRO_FORMAT_RGB24,
                                                      static_cast<int>(std::ceil(width)),
                                                      static_cast<int>(std::ceil(height)));
  cairo_ = cairo_create(surface_);
  Check();
}

Drawing::Drawing(int32_t width, int32_t height) : Drawing(Blank{}, "", width, height) {
  surface_ = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  cairo_ = cairo_create(surface_);
  Check();
}

Drawing::~Drawing() {
  cairo_destroy(cairo_);
  cairo_surface_destroy(surface_);
}

void Drawing::Check() const {
  const cairo_status_t status = cairo_status(cairo_);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw Error((file_.empty() ? "" : file_ + ": ") + std::string("cannot be drawn: ") +
                cairo_status_to_string(status));
  }
}

void Drawing::Use(const Ink& ink) {
  cairo_set_source_rgba(cairo_, ink.red, ink.green, ink.blue, ink.alpha);
}

void Drawing::Fill(const Box& box, const Ink& ink) {
  Use(ink);
  cairo_rectangle(cairo_, box.left, box.top, box.width, box.height);
  cairo_fill(cairo_);
}

void Drawing::Frame(const Box& box, const Ink& ink, double thickness) {
  Use(ink);
  cairo_set_line_width(cairo_, thickness);
  cairo_rectangle(cairo_, box.left, box.top, box.width, box.height);
  cairo_stroke(cairo_);
}

void Drawing::Line(const std::vector<Point>& points, const Ink& ink, double thickness) {
  if (points.empty()) return;
  Use(ink);
  cairo_set_line_width(cairo_, thickness);
  cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cairo_, CAIRO_LINE_CAP_ROUND);
  cairo_move_to(cairo_, points[0].x, points[0].y);
  for (const Point& point : points) cairo_line_to(cairo_, point.x, point.y);
  cairo_stroke(cairo_);
  cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_MITER);
  cairo_set_line_cap(cairo_, CAIRO_LINE_CAP_BUTT);
}

void Drawing::Dashes(Point from, Point to, const Ink& ink, double thickness) {
  constexpr double kDashes[] = {4.0, 4.0};
  cairo_set_dash(cairo_, kDashes, 2, 0.0);
  Use(ink);
  cairo_set_line_width(cairo_, thickness);
  cairo_move_to(cairo_, from.x, from.y);
  cairo_line_to(cairo_, to.x, to.y);
  cairo_stroke(cairo_);
  cairo_set_dash(cairo_, nullptr, 0, 0.0);
}

void Drawing::Disc(Point centre, double radius, const Ink& ink) {
  Use(ink);
  cairo_arc(cairo_, centre.x, centre.y, radius, 0.0, 2.0 * std::numbers::pi);
  cairo_fill(cairo_);
}

double Drawing::WidthOf(const std::string& text, double size, bool bold) {
  cairo_select_font_face(cairo_, kFont, CAIRO_FONT_SLANT_NORMAL,
                         bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cairo_, size);
  cairo_text_extents_t extents;
  cairo_text_extents(cairo_, Drawable(text).c_str(), &extents);
  return extents.x_advance;
}

std::string Drawing::Shortened(const std::string& text, double width, double size, bool bold) {
  if (WidthOf(text, size, bold) <= width) return text;
  const std::string whole = Drawable(text);
  std::vector<size_t> starts;  // of characters
  for (size_t at = 0; at < whole.size(); at += CharacterAt(whole, at)) starts.push_back(at);
  starts.push_back(whole.size());
  std::string shortened;
  for (size_t kept = starts.size() - 1; kept-- > 0;) {
    const size_t front = (kept + 1) / 2, back = kept - front;
    shortened =
        whole.substr(0, starts[front]) + kEllipsis + whole.substr(starts[starts.size() - 1 - back]);
    if (WidthOf(shortened, size, bold) <= width) break;
  }
  return shortened;
}

void Drawing::Text(const std::string& text, Point at, double size, const Ink& ink, Align align,
                   bool bold) {
  const double width = WidthOf(text, size, bold);  // sets the font, too
  Use(ink);
  const double back = align == Align::kLeft ? 0.0 : align == Align::kCentre ? width / 2 : width;
  cairo_move_to(cairo_, at.x - back, at.y);
  cairo_show_text(cairo_, Drawable(text).c_str());
}

void Drawing::Picture(const FrameView& frame, const Box& box) {
  const Surface picture(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, frame.size.width, frame.size.height));
  if (cairo_surface_status(picture.get()) == CAIRO_STATUS_SUCCESS) {
    const ptrdiff_t stride = cairo_image_surface_get_stride(picture.get());
    uint8_t* const pixels = cairo_image_surface_get_data(picture.get());
    for (int32_t y = 0; y < frame.size.height; ++y) {
      std::copy_n(frame.Row(y), ptrdiff_t{frame.size.width} * 4, pixels + y * stride);
    }
    cairo_surface_mark_dirty(picture.get());
  }
  const auto seen = [](double units) {
    return std::max(1, static_cast<int>(std::ceil(units * kPixelsOfUnit)));
  };
  const int width = std::min(frame.size.width, seen(box.width));
  const int height = std::min(frame.size.height, seen(box.height));
  if (IsSvg(file_) && !(FrameSize{width, height} == frame.size)) {
    Drawing smaller(width, height);
    smaller.Place(picture.get(), {0.0, 0.0, smaller.width_, smaller.height_});
    cairo_surface_flush(smaller.surface_);
    Place(smaller.surface_, box);
  } else {
    Place(picture.get(), box);
  }
}

void Drawing::Place(cairo_surface_t* picture, const Box& box) {
  const int width = cairo_image_surface_get_width(picture);
  const int height = cairo_image_surface_get_height(picture);
  cairo_save(cairo_);
  cairo_translate(cairo_, box.left, box.top);
  cairo_scale(cairo_, box.width / width, box.height / height);
  cairo_set_source_surface(cairo_, picture, 0.0, 0.0);
  cairo_pattern_set_filter(cairo_get_source(cairo_), CAIRO_FILTER_GOOD);
  cairo_pattern_set_extend(cairo_get_source(cairo_), CAIRO_EXTEND_PAD);
  cairo_rectangle(cairo_, 0.0, 0.0, width, height);
  cairo_fill(cairo_);
  cairo_restore(cairo_);
  Check();
}

Drawing::Clip::Clip(Drawing& drawing, const Box& box) : drawing_(drawing) {
  cairo_save(drawing_.cairo_);
  cairo_rectangle(drawing_.cairo_, box.left, box.top, box.width, box.height);
  cairo_clip(drawing_.cairo_);
}

Drawing::Clip::~Clip() { cairo_restore(drawing_.cairo_); }

FrameView Drawing::Pixels() {
  cairo_surface_flush(surface_);
  return {cairo_image_surface_get_data(surface_),
          cairo_image_surface_get_stride(surface_),
          {cairo_image_surface_get_width(surface_), cairo_image_surface_get_height(surface_)}};
}

std::string Drawing::Coded() {
  Check();
  std::vector<uint8_t> png;
  if (!IsSvg(file_) &&
      cairo_surface_write_to_png_stream(surface_, Append, &png) != CAIRO_STATUS_SUCCESS) {
    throw Error(file_ + ": cannot be coded as PNG");
  }
  cairo_surface_finish(surface_);
  if (const cairo_status_t status = cairo_surface_status(surface_);
      status != CAIRO_STATUS_SUCCESS) {
    throw Error(file_ + ": cannot be drawn: " + cairo_status_to_string(status));
  }
  const std::vector<uint8_t>& bytes = IsSvg(file_) ? svg_ : png;
  return {bytes.begin(), bytes.end()};
}

void Drawing::Finish() {
  const std::string bytes = Coded();
  OutputFile output(file_);
  output.Write(bytes.data(), bytes.size());
  output.Finish();
}

}  // namespace kelto::host
