// Outlines over the source display: the view and the action-safe frame inside it.
#pragma once

#include <cstdint>

#include "platform/hfx.h"
#include "state/PanZoomState.h"

namespace kelto {

/// A rectangle in pixels, inclusive; fractions are rounded down when it is drawn.
struct OutlineRect {
  double left, top, right, bottom;
};

/// How thick an outline is, in pixels.
enum OutlineMode : int32_t { kOutlineThin = 1, kOutlineThick = 2 };

/// Draws the edges of `rect`, clipped to the image, in the layout of `colorspace` (hfxColorspace):
/// RGB pixels become 235 in all four bytes; in 4:2:2 the luma below is shifted by 70, so that the
/// line shows on any picture. No pixel is touched twice. `colour` is part of the call but neither
/// layout uses it.
void DrawFrameOutline(hfxImage& image, int32_t colorspace, const OutlineRect& rect, int32_t mode,
                      uint32_t colour);

/// The rectangle that `view` shows of a whole picture drawn over `width` x `height` pixels.
OutlineRect ViewRect(int32_t width, int32_t height, double zoom, double centreX, double centreY);

/// 0.9 of a rectangle's extent each way, about its centre.
OutlineRect ActionSafeRect(const OutlineRect& rect);

/// Outlines an instance's view, and the action-safe frame where the instance shows it.
void DrawViewOverlay(const PanZoomState& state, hfxImage& image, int32_t colorspace);

}  // namespace kelto
