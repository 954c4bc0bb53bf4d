// Which pixels of a frame the photo touches. The effect works in 4:2:2 inside, so it returns the
// video beside the photo with half its chroma columns; the host's own pixels belong there.
#pragma once

#include <cstdint>

#include "framing/drawn_area.h"
#include "platform/api.h"
#include "platform/hfx.h"

namespace kelto::frei0r {

/// Columns `left` to `right` - 1 and rows `top` to `bottom` - 1 of the whole frame; empty where the
/// photo lies beside it.
struct CoveredPixels {
  int32_t left = 0, top = 0, right = 0, bottom = 0;
};

/// The pixels that the photo covers wholly or in part, of a frame of `size`; `nearest`: those whose
/// centres it covers, which are all that the nearest-neighbour filter draws.
KELTO_PLATFORM_API CoveredPixels CoveredBy(const DrawnFrame& frame, const View& view,
                                           PixelSize size, bool nearest);

/// The smallest such area that holds both, of two fields.
KELTO_PLATFORM_API CoveredPixels CoveredByEither(const CoveredPixels& a, const CoveredPixels& b);

/// Copies the pixels outside `covered` from `video` to `output`, with their alpha. Both are images
/// of a frame, or of one of its fields: then row n is the frame's row `firstRow` + n * `rowStep`.
void KeepVideoBeside(const CoveredPixels& covered, const hfxImage& video, int32_t firstRow,
                     int32_t rowStep, hfxImage& output);

/// Of a frame drawn over black: gives the pixels that the photo covers in part that part as their
/// alpha, and the photo's colours alone. `covered` and `output` as above.
void SetPartsAsAlpha(const DrawnFrame& frame, const View& view, const CoveredPixels& covered,
                     int32_t firstRow, int32_t rowStep, hfxImage& output);

}  // namespace kelto::frei0r
