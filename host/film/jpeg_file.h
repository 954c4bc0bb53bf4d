// A frame as the bytes of a JPEG file.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::host {

/// Codes a frame of PixelLayout::kBGRA as a JFIF file of quality 95 without chroma subsampling.
/// Throws std::runtime_error with the encoder's reason.
std::vector<uint8_t> EncodeJpeg(const FrameView& frame, SampleAspect aspect);

}  // namespace kelto::host
