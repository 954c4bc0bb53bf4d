// Frames as encoders of red, green and blue take them.
#pragma once

#include "host/base/film_format.h"

extern "C" {
#include <libavutil/frame.h>
}

namespace kelto::host {

/// Whether frames of this format are red, green and blue.
bool IsRgb(AVPixelFormat format);

/// Fills an RGB frame of `to`'s size: from PixelLayout::kBGRA those of AV_PIX_FMT_RGB24; from
/// PixelLayout::kRgba16 those of AV_PIX_FMT_ARGB, dithered, and of AV_PIX_FMT_GBRP16 and
/// AV_PIX_FMT_GBRAP16, to the bit. Colours are not multiplied by alpha.
void FillRgb(const FrameView& frame, const AVFrame& to);

}  // namespace kelto::host
