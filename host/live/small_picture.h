// A frame made small, to be looked at.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::host {

/// `frame` in this size: bytes R, G, B, 255, each pixel the mean of up to 16 of the
/// frame's, so that it takes the same time for large frames. What is transparent is over black.
std::vector<uint8_t> SmallPicture(const FrameView& frame, PixelLayout layout, FrameSize size);

}  // namespace kelto::host
