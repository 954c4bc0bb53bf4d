// Nearest neighbour: source pixels copied one by one into a destination row.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "resample/job.h"
#include "targets/target.h"

namespace kelto {

/// The bytes that destination pixels take of four-byte source pixels, alternating between two
/// choices.
struct TakenBytes {
  int32_t perPixel = 4;  ///< 2 or 4
  /// Of the first, third, ... pixel, and of the second, fourth, ...
  std::array<uint8_t, 4> first = {0, 1, 2, 3}, second = {0, 1, 2, 3};
};

constexpr TakenBytes kWholePixels = {};

/// Luma, and the chroma byte of the column's parity, for a row from `firstColumn` on.
TakenBytes TakenBytes422(const ChromaBytes& chroma, int32_t firstColumn);

/// Writes the bytes to take of the source pixels `columns` of a row. On the current target. Returns
/// the target whose code did it.
Target NearestPixels(const uint8_t* sourceRow, const std::vector<int32_t>& columns,
                     const TakenBytes& taken, uint8_t* to);

/// The same pixel by pixel.
Target NearestPixelsScalar(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                           const TakenBytes& taken, uint8_t* to);

/// The same in vectors, where the engine is built with them.
Target NearestPixelsVectors(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                            const TakenBytes& taken, uint8_t* to);

}  // namespace kelto
