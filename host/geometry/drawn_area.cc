#include "host/geometry/drawn_area.h"

#include "image/cache.h"
#include "platform/hfx.h"
#include "render/geometry.h"
#include "state/PanZoomState.h"

namespace kelto::host {
namespace {

bool IsReduced(const DrawnFrame& frame, PixelSize output) {
  PanZoomState state;
  state.playMode = frame.playMode;
  state.imageWidth = static_cast<uint32_t>(frame.photo.width);
  state.imageHeight = static_cast<uint32_t>(frame.photo.height);
  state.outputWidth = output.width;
  state.outputHeight = output.height;
  return !KeepsNaturalSize(state);
}

/// The size of the reduced copy. The one that was made for a whole frame stays for its fields.
PixelSize ReducedCopy(const DrawnFrame& frame) {
  const PixelSize madeFor = IsReduced(frame, frame.frame) ? frame.frame : frame.output;
  const ImageSize size =
      ReducedSize({frame.photo.width, frame.photo.height}, {madeFor.width, madeFor.height});
  return {size.width, size.height};
}

/// The resampler's two weight formulas, for scales above 1 and up to 1, lie this many pixels of its
/// source apart.
constexpr double kReducingStep = 1.5;

}  // namespace

DrawnArea AreaOf(const DrawnFrame& frame) {
  DrawnArea area;
  area.reduced = IsReduced(frame, frame.output);
  area.cached = area.reduced ? ReducedCopy(frame) : frame.photo;

  FrameGeometry geometry;
  geometry.sourceWidth = area.cached.width;
  geometry.sourceHeight = area.cached.height;
  geometry.outputWidth = static_cast<uint32_t>(frame.output.width);
  geometry.outputHeight = static_cast<uint32_t>(frame.output.height);
  geometry.fieldMode = frame.fieldMode;
  geometry.displayAspect = frame.displayAspect;
  geometry.squarePixels = frame.squarePixels;
  geometry.videoType = frame.videoType;
  geometry.view = {frame.zoom, frame.x, frame.y};
  const FrameRects rects = ComputeFrameRects(geometry);

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

}  // namespace kelto::host
