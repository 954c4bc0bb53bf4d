// What shows around the picture.
#pragma once

#include <array>

#include "resample/canvas.h"
#include "resample/job.h"

namespace kelto {

/// A background colour as the destination's bytes: a 4:2:2 destination takes them as Y, Cb, Y, Cr
/// of a pair of columns, a four-byte one as one pixel. RGB is converted with the constants of the
/// picture's own conversion, truncated, in exact arithmetic; the chroma of a YCbCr colour is taken
/// as stored, without removing an offset, since films made so far look so; the result saturates,
/// its fourth byte 0.
std::array<uint8_t, 4> BackgroundPattern(const Background& background);

/// Fills the canvas outside `columns` x `rows` (buffer rows) with the background; all of it when
/// either is empty. Where video is the background, what the video lacks is black; a four-byte
/// destination shows the colour instead, since the video is 4:2:2.
void FillBackground(const Canvas& canvas, const Background& background, Range columns, Range rows);

}  // namespace kelto
