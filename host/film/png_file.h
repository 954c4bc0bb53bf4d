// A frame as the bytes of a PNG file.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::host {

/// Codes a frame of PixelLayout::kBGRA as a PNG file of eight bits, red, green and blue; the
/// frame's alpha is left out. Throws std::runtime_error with the encoder's reason.
std::vector<uint8_t> EncodePng(const FrameView& frame);

}  // namespace kelto::host
