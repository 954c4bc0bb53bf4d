// The real-time path, nearest neighbour: each destination pixel takes one source pixel.
#pragma once

#include <vector>

#include "resample/canvas.h"
#include "resample/geometry.h"
#include "resample/job.h"

namespace kelto {

/// Source columns of destination columns, stepped like a line: the whole part of the step each
/// time, and one more whenever the fractions add up to over 1. They start with that of the first
/// column's exact position, so that a slow pan does not jump by whole pixels more than it must.
std::vector<int32_t> NearestColumns(const AxisMap& map, Range columns, int32_t imageWidth);

/// The source row of a frame row.
int32_t NearestRow(const AxisMap& map, int32_t frameRow, int32_t imageHeight);

/// Draws the source pixels that `picture`'s sampling positions fall on into columns x buffer rows
/// of the canvas, which lie within the picture's spans. In a 4:2:2 destination the chroma byte
/// follows from the column's parity.
void DrawRealTime(const Canvas& canvas, const PixelBlock& source, const ChromaBytes& chroma,
                  const Picture& picture, Range columns, Range rows);

}  // namespace kelto
