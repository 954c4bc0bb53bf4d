#include "framing/frame_rects.h"

#include "platform/hfx.h"

namespace kelto {
namespace {

/// Where the view's centre moves the source rectangle along one axis, in source pixels. `base` is
/// the base rectangle's extent, `scale` its source pixels per output pixel, `aspect` the frame's.
float CentreOffset(double centre, double zoom, float base, float scale, float aspect) {
  const float plain = base * static_cast<float>(centre) / static_cast<float>(zoom);
  if (zoom < 1.0) return plain;
  const double zoomed = centre * (zoom - 1.0) * base / zoom;
  // Far minified views are shifted by a multiple of the aspect. Odd as it is for a pixel offset, it
  // belongs to the resampler's two weight formulas: without it the picture jumps at 1:1.
  if (zoom > 1.0 && scale > zoom) {
    return static_cast<float>(zoomed + plain -
                              (zoom - 1.0) / (static_cast<double>(scale) - 1.0) * aspect);
  }
  return static_cast<float>(plain + zoomed);
}

}  // namespace

FrameRects ComputeFrameRects(const FrameGeometry& frame, PixelSize picture, const View& view) {
  float aspect = static_cast<float>(frame.displayAspect);
  // Non-square source pixels: 625-line video is narrower than it is shown, all other is wider.
  if (!frame.squarePixels) aspect *= frame.videoType == hfxVideoType625 ? 0.9375f : 1.1111112f;

  // Unsigned, as the host counts the sides of its images.
  const float width = static_cast<float>(static_cast<uint32_t>(frame.output.width));
  const float height = static_cast<float>(static_cast<uint32_t>(frame.output.height)) *
                       (frame.fieldMode == hfxFieldModeSeparate ? 2 : 1);
  FrameRects rects;
  rects.target = {0.5f, 0.5f, width - 0.5f, height - 0.5f};

  const float sw = static_cast<float>(picture.width);
  const float sh = static_cast<float>(picture.height);
  RectF& source = rects.source;
  source = {0.5f, 0.5f, sw - 0.5f, sh - 0.5f};
  float baseWidth = sw, baseHeight = sh;
  // The picture's own shape alone decides, not how it compares with the frame's: saved
  // projects are framed by this rule.
  if (picture.width <= picture.height) {
    const float margin = (sw - aspect * sh) * 0.5f;
    source.left = 0.5f + margin;
    source.right = sw - 0.5f - margin;
    baseWidth = source.right + 1.0f - source.left;
  } else {
    const float margin = (sh - sw / aspect) * 0.5f;
    source.top = 0.5f + margin;
    source.bottom = sh - 0.5f - margin;
    baseHeight = source.bottom + 1.0f - source.top;
  }

  const float offsetX = CentreOffset(view.centreX, view.zoom, baseWidth, baseWidth / width, aspect);
  const float offsetY =
      CentreOffset(view.centreY, view.zoom, baseHeight, baseHeight / height, aspect);
  if (view.zoom != 1.0) {
    const float zoom = static_cast<float>(view.zoom);
    const float dx = (baseWidth - baseWidth / zoom) * 0.5f;
    const float dy = (baseHeight - baseHeight / zoom) * 0.5f;
    source.left += dx;
    source.right -= dx;
    source.top += dy;
    source.bottom -= dy;
  }
  source.left += offsetX;
  source.right += offsetX;
  source.top += offsetY;
  source.bottom += offsetY;
  return rects;
}

}  // namespace kelto
