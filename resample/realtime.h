// The real-time path, nearest neighbour: each destination pixel takes one source pixel.
#pragma once

#include "resample/canvas.h"
#include "resample/geometry.h"
#include "resample/job.h"

namespace kelto {

/// Draws the source pixels that `picture`'s sampling positions fall on into columns x buffer rows
/// of the canvas, which lie within the picture's spans. In a 4:2:2 destination the chroma byte
/// follows from the column's parity.
void DrawRealTime(const Canvas& canvas, const PixelBlock& source, const ChromaBytes& chroma,
                  const Picture& picture, Range columns, Range rows);

}  // namespace kelto
