// The shape of pixels in a PNG file.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::host {

/// The PNG file with a pHYs chunk that gives the shape of its pixels; as it was when they are
/// square. The encoders behind png_file.h know no such chunk.
std::vector<uint8_t> WithPixelShape(std::vector<uint8_t> png, SampleAspect aspect);

}  // namespace kelto::host
