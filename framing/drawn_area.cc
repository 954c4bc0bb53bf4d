#include "framing/drawn_area.h"

#include "framing/cached_size.h"

namespace kelto {
namespace {

bool IsReduced(const DrawnFrame& frame, PixelSize output) {
  return !KeepsNaturalSize(frame.playMode, frame.photo, output);
}

/// The size of the reduced copy. The one that was made for the first output stays for its fields.
PixelSize ReducedCopy(const DrawnFrame& frame) {
  return ReducedSize(frame.photo,
                     IsReduced(frame, frame.first) ? frame.first : frame.geometry.output);
}

/// The resampler's two weight formulas, for scales above 1 and up to 1, lie this many pixels of its
/// source apart.
constexpr double kReducingStep = 1.5;

}  // namespace

DrawnArea AreaOf(const DrawnFrame& frame, const View& view) {
  DrawnArea area;
  area.reduced = IsReduced(frame, frame.geometry.output);
  area.cached = area.reduced ? ReducedCopy(frame) : frame.photo;
  const FrameRects rects = ComputeFrameRects(frame.geometry, area.cached, view);

  // The rectangles end at the centres of their outermost pixels.
  const double across = static_cast<double>(frame.photo.width) / area.cached.width;
  const double down = static_cast<double>(frame.photo.height) / area.cached.height;
  area.left = (rects.source.left - 0.5) * across;
  area.right = (rects.source.right + 0.5) * across;
  area.top = (rects.source.top - 0.5) * down;
  area.bottom = (rects.source.bottom + 0.5) * down;
  area.scaleX = (area.right - area.left) / (1.0 + rects.target.right - rects.target.left);
  area.scaleY = (area.bottom - area.top) / (1.0 + rects.target.bottom - rects.target.top);
  if (area.scaleX > across) area.stepX = kReducingStep * across;
  if (area.scaleY > down) area.stepY = kReducingStep * down;
  return area;
}

}  // namespace kelto
