// The size at which a picture is cached.
#pragma once

#include <cstdint>

#include "framing/pixel_size.h"

namespace kelto {

/// True when a picture stays cached at its natural size: in final renders (`playMode`, a
/// hfxPlayMode), for an output of unknown size (a side of 0), and when it is smaller than the
/// output in both directions.
bool KeepsNaturalSize(int32_t playMode, PixelSize picture, PixelSize output);

/// The size that other pictures are reduced to: a landscape picture takes the output's width,
/// others its height; the other side follows the picture's shape, cut to whole pixels, at least 1.
/// It may exceed the output.
PixelSize ReducedSize(PixelSize picture, PixelSize output);

}  // namespace kelto
