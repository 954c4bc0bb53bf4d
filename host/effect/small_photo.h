// A photo with fewer pixels, for a screen.
#pragma once

#include <cstdint>
#include <vector>

#include "framing/pixel_size.h"
#include "host/effect/photo.h"

namespace kelto::host {

/// The pixels of a smaller picture of the photo, B, G, R, A without padding, upright, with sides
/// divided by `by` at the most and rounded up, where its form is decoded in less time so; else all
/// of them. `size` becomes the picture's. Throws Error when it cannot be decoded.
std::vector<uint8_t> DecodePhoto(const Photo& photo, int32_t by, PixelSize& size);

}  // namespace kelto::host
