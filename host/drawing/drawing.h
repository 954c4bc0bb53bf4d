// Drawings: lines, text and pictures in a PNG or SVG file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/base/film_format.h"
#include "host/base/library.h"

// Cairo's own names, so that its header stays out of this one.
using cairo_t = struct _cairo;                  // NOLINT(bugprone-reserved-identifier)
using cairo_surface_t = struct _cairo_surface;  // NOLINT(bugprone-reserved-identifier)

namespace kelto::host {

/// The library that draws.
Libraries DrawingLibraries();

struct Ink {
  double red = 0.0, green = 0.0, blue = 0.0, alpha = 1.0;
};

struct Point {
  double x = 0.0, y = 0.0;
};

/// In units of the drawing, y downwards.
struct Box {
  double left = 0.0, top = 0.0, width = 0.0, height = 0.0;
  double Right() const { return left + width; }
  double Bottom() const { return top + height; }
};

/// Where a text's reference point is along its line.
enum class Align { kLeft, kCentre, kRight };

/// A drawing that appears in its file when it is finished. Operations throw Error.
class Drawing {
 public:
  /// The kind of file goes by the name's ending, .png or .svg; throws UsageError for others. A unit
  /// is a pixel of PNG files.
  Drawing(const std::string& file, double width, double height);
  /// One that goes into memory only, see Pixels.
  Drawing(int32_t width, int32_t height);
  ~Drawing();
  Drawing(const Drawing&) = delete;
  Drawing& operator=(const Drawing&) = delete;

  void Fill(const Box& box, const Ink& ink);
  void Frame(const Box& box, const Ink& ink, double thickness);
  void Line(const std::vector<Point>& points, const Ink& ink, double thickness);
  void Dashes(Point from, Point to, const Ink& ink, double thickness);
  void Disc(Point centre, double radius, const Ink& ink);
  /// `at` is on the text's base line. Bytes that are not UTF-8 show as question marks.
  void Text(const std::string& text, Point at, double size, const Ink& ink,
            Align align = Align::kLeft, bool bold = false);
  double WidthOf(const std::string& text, double size, bool bold = false);
  /// The text, or where it is wider than `width`, as much of both its ends as there is room for
  /// around an ellipsis.
  std::string Shortened(const std::string& text, double width, double size, bool bold = false);
  /// Scales a frame of PixelLayout::kBGRA into the box; its alpha is left out. An SVG file keeps no
  /// more of its pixels than can be distinguished in the box, looked at closely.
  void Picture(const FrameView& frame, const Box& box);
  /// Until the end of the scope of the result, nothing is drawn outside the box.
  class Clip {
   public:
    Clip(Drawing& drawing, const Box& box);
    ~Clip();
    Clip(const Clip&) = delete;
    Clip& operator=(const Clip&) = delete;

   private:
    Drawing& drawing_;
  };

  /// The pixels so far, PixelLayout::kBGRA, valid until the next operation; not of an SVG file.
  FrameView Pixels();
  /// The bytes of the file. Called once, last.
  std::string Coded();
  /// Writes them. Called instead.
  void Finish();

 private:
  /// Without surface yet: those that make one start from it, so that it is freed when they throw.
  struct Blank {};
  Drawing(Blank, std::string file, double width, double height);
  void Use(const Ink& ink);
  void Place(cairo_surface_t* picture, const Box& box);
  void Check() const;

  std::string file_;
  double width_, height_;
  std::vector<uint8_t> svg_;
  cairo_surface_t* surface_ = nullptr;
  cairo_t* cairo_ = nullptr;
};

}  // namespace kelto::host
