#include "render/outline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace kelto {
namespace {

constexpr uint32_t kOutlineColour = 0xFF00;

/// First and last pixel of a line's thickness or length; empty when last < first.
struct Span {
  int32_t first, last;
};

int32_t WholePixel(double coordinate, int32_t last) {
  const double down = std::floor(coordinate);
  if (!(down > 0.0)) return 0;  // also for a coordinate that is not a number
  return down >= last ? last : static_cast<int32_t>(down);
}

Span Band(int32_t first, int32_t thickness, int32_t last) {
  return {first, std::min(first + thickness - 1, last)};
}

void MarkPixel(uint8_t* row, int32_t x, int32_t colorspace) {
  if (colorspace == hfxColorspaceRGB) {
    std::memset(row + ptrdiff_t{4} * x, 235, 4);
    return;
  }
  uint8_t& luma = row[ptrdiff_t{2} * x];
  luma = static_cast<uint8_t>(luma < 190 ? std::min(luma + 70, 255) : luma - 70);
}

void DrawLines(hfxImage& image, int32_t colorspace, Span rows, Span columns) {
  for (int32_t y = rows.first; y <= rows.last; ++y) {
    uint8_t* row = image.GetRowPtr(y);
    for (int32_t x = columns.first; x <= columns.last; ++x) MarkPixel(row, x, colorspace);
  }
}

}  // namespace

void DrawFrameOutline(hfxImage& image, int32_t colorspace, const OutlineRect& rect, int32_t mode,
                      uint32_t /*colour*/) {
  const int32_t lastX = image.GetWidth() - 1;
  const int32_t lastY = image.GetHeight() - 1;
  if (lastX < 0 || lastY < 0) return;
  const int32_t left = WholePixel(rect.left, lastX), right = WholePixel(rect.right, lastX);
  const int32_t top = WholePixel(rect.top, lastY), bottom = WholePixel(rect.bottom, lastY);
  if (right < left || bottom < top) return;

  const Span topBand = Band(top, mode, lastY);
  const Span bottomBand = {std::max(bottom, topBand.last + 1), Band(bottom, mode, lastY).last};
  const Span leftBand = Band(left, mode, lastX);
  const Span rightBand = {std::max(right, leftBand.last + 1), Band(right, mode, lastX).last};
  const Span across = {left, std::max(leftBand.last, rightBand.last)};
  // Between the two bands, so that no corner is shifted twice and back.
  const Span between = {topBand.last + 1, bottom - 1};
  DrawLines(image, colorspace, topBand, across);
  DrawLines(image, colorspace, bottomBand, across);
  DrawLines(image, colorspace, between, leftBand);
  DrawLines(image, colorspace, between, rightBand);
}

OutlineRect ViewRect(int32_t width, int32_t height, double zoom, double centreX, double centreY) {
  const double dx = (width - width / zoom) * 0.5;
  const double dy = (height - height / zoom) * 0.5;
  const double moveX = centreX * width;
  const double moveY = centreY * height;
  return {dx + moveX, dy + moveY, width - 1 - dx + moveX, height - 1 - dy + moveY};
}

OutlineRect ActionSafeRect(const OutlineRect& rect) {
  const double width = rect.right - rect.left + 1.0;
  const double height = rect.bottom - rect.top + 1.0;
  const double dx = (width - 0.9 * width) * 0.5;
  const double dy = (height - 0.9 * height) * 0.5;
  return {rect.left + dx, rect.top + dy, rect.right - dx, rect.bottom - dy};
}

void DrawViewOverlay(const PanZoomState& state, hfxImage& image, int32_t colorspace) {
  const OutlineRect view = ViewRect(image.GetWidth(), image.GetHeight(), state.settings.view.zoom,
                                    state.settings.view.centreX, state.settings.view.centreY);
  DrawFrameOutline(image, colorspace, view, kOutlineThick, kOutlineColour);
  if (!state.settings.showActionSafe || !state.renderFlag) return;
  DrawFrameOutline(image, colorspace, ActionSafeRect(view), kOutlineThin, kOutlineColour);
}

}  // namespace kelto
