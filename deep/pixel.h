// Deep pixels one at a time, in double precision: the plain form of what vectors do to many.
#pragma once

#include <array>

#include "deep/picture.h"

namespace kelto {

/// Red, green, blue and alpha, full scale 1, colours multiplied by alpha.
using DeepPixel = std::array<double, 4>;

/// With alpha 1 where `from` has none.
DeepPixel ReadPixel(const DeepSource& from, int32_t x, int32_t y);

/// Rounded and clamped as the target's samples need; not a number becomes 0 in 16 bits.
void WritePixel(const DeepTarget& to, int32_t x, int32_t y, const DeepPixel& pixel);

/// sRGB's transfer function and its inverse, continued beyond 0 .. 1 and, point-symmetrically,
/// below.
double DecodeLight(double encoded);
double EncodeLight(double linear);

/// The same of a pixel's colours, divided by its alpha meanwhile. At alpha 0 and below colours are
/// taken as they are.
DeepPixel DecodeLight(const DeepPixel& pixel);
DeepPixel EncodeLight(const DeepPixel& pixel);

/// A filtered pixel freed from what negative lobes did to its alpha: held within 0 .. 1; where it
/// was above, colours are divided by it; where it was below, negative ones are raised by as much,
/// up to 0. `clamped`: colours are held within 0 .. alpha.
DeepPixel HeldWithinAlpha(const DeepPixel& pixel, bool clamped);

/// `front`, which covers part of the pixel, over `behind`.
DeepPixel Over(const DeepPixel& front, double coverage, const DeepPixel& behind);

}  // namespace kelto
