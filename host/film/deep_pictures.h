// Deep frames as the bytes of PNG and TIFF files.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::host {

/// What of a frame in PixelLayout::kRgba16 goes into a picture.
struct PictureDepth {
  int32_t bits = 16;   ///< 8 or 16; eight are dithered
  bool alpha = false;  ///< whether the picture has transparency, with whole colours beside it
};

/// Code such a frame; the shape of pixels is left to the caller in PNG. Throw std::runtime_error
/// with the encoder's reason.
std::vector<uint8_t> EncodeDeepPng(const FrameView& frame, PictureDepth depth);
std::vector<uint8_t> EncodeDeepTiff(const FrameView& frame, PictureDepth depth,
                                    SampleAspect aspect);

/// The frame's samples, R, G, B and, where it is asked for, A, without padding: bytes, or words of
/// the machine's order.
std::vector<uint8_t> SamplesOf(const FrameView& frame, PictureDepth depth);

}  // namespace kelto::host
