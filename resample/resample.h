// The resampling engine's entries.
#pragma once

#include "resample/job.h"

namespace kelto {

/// Clips the job's rectangles to the destination, the source following, and sets `coverage`.
/// False when nothing remains to draw.
bool ClipJob(ResampleJob& job);

/// Draws a job into a 4:2:2 destination (two bytes a pixel: Y and one chroma sample), background
/// included. Whatever the job's numbers, nothing outside its buffers is read or written: rectangles
/// that make no sense show the background. Throws std::bad_alloc when memory for tables or
/// intermediate rows runs out; what the destination holds then is not defined.
///
/// Memory: that of the rows (filtered.h, filtered_fixed.h) and of the tables of weights, four bytes
/// for each tap of each column and row drawn and half as much again for vectors. Of a column or row
/// no more taps are held than the image has pixels along it.
void ResampleTo422(const ResampleJob& job);

/// Draws a job into a four-byte destination, background included; a video background is 4:2:2 and
/// does not show: the colour does. For tests and tools; otherwise as ResampleTo422.
void ResampleTo4Byte(const ResampleJob& job);

/// The image cache's reduction: four-byte pixels, no clip, no background, tap bounds of its own.
/// Pixels outside `destRect` keep what they hold, and all do when the rectangles make no sense.
void ReduceImage(const ResampleJob& job);

}  // namespace kelto
