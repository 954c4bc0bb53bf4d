// Deep frames with fewer levels, dithered.
#pragma once

#include <cstdint>

#include "deep/picture.h"

namespace kelto {

/// Of a frame's pixel: how far above a level, in 65535ths of the step to the next one, a value may
/// lie without being shown as that: 0 .. 65534, interleaved gradient noise. The same for every
/// frame, so that what stands still stays still.
int32_t DitherThreshold(int32_t x, int32_t y);

/// Writes a frame as bytes, red, green, blue and alpha, `rowBytes` (of either sign) from row to
/// row; colours stay multiplied by alpha. Each value becomes one of the two levels beside it, by
/// the threshold of its pixel: over an area their mean is the value, and none is off by a level or
/// more. A value that is a level stays so, and colours never pass their alpha. Floats are held
/// within 0 .. 1 before. `left` and `top`: where the frame's first pixel lies in the one it is a
/// part of.
void DitherTo8Bits(const DeepSource& frame, uint8_t* bytes, ptrdiff_t rowBytes, int32_t left = 0,
                   int32_t top = 0);

}  // namespace kelto
