// Source pixels picked one by one into a destination row.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "resample/job.h"
#include "resample/target.h"

namespace kelto {

/// The bytes that destination pixels take of four-byte source pixels, alternating between two
/// choices.
struct PickedBytes {
  int32_t perPixel = 4;  ///< 2 or 4
  /// Of the first, third, ... pixel, and of the second, fourth, ...
  std::array<uint8_t, 4> first = {0, 1, 2, 3}, second = {0, 1, 2, 3};
};

constexpr PickedBytes kWholePixels = {};

/// Luma, and the chroma byte of the column's parity, for a row from `firstColumn` on.
PickedBytes PickedBytes422(const ChromaBytes& chroma, int32_t firstColumn);

/// Writes the picked bytes of the source pixels `columns` of a row. On the current target. Returns
/// the target whose code did it.
Target PickPixels(const uint8_t* sourceRow, const std::vector<int32_t>& columns,
                  const PickedBytes& picked, uint8_t* to);

/// The same pixel by pixel.
Target PickPixelsScalar(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                        const PickedBytes& picked, uint8_t* to);

/// The same in vectors, where the engine is built with them.
Target PickPixelsVectors(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                         const PickedBytes& picked, uint8_t* to);

}  // namespace kelto
