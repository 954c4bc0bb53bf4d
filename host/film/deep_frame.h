// Deep frames as films take them: with colours that are not multiplied by alpha.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::host {

/// A row of PixelLayout::kRgba16 with whole colours; transparent pixels become black.
void UnpremultiplyRow(const uint16_t* from, int32_t width, uint16_t* to);

/// A frame of whole colours, R, G, B, A without padding: words, or bytes that are dithered.
std::vector<uint16_t> StraightWords(const FrameView& frame);
std::vector<uint8_t> StraightBytes(const FrameView& frame);

}  // namespace kelto::host
