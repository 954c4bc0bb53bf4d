// How a video's pictures are turned before they are shown.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kelto::host {

/// One of the eight ways to lay a picture down: its rows made columns when `transposed`, and then
/// read from the right, from below, or both.
struct Orientation {
  bool transposed = false;
  bool fromRight = false;
  bool fromBelow = false;
  bool Upright() const { return !transposed && !fromRight && !fromBelow; }
};

/// The orientation that a container's display matrix asks for: nine numbers a b u c d v x y w, a
/// point being shown at (a x + c y, b x + d y). Angles between are taken for the nearest.
Orientation OrientationOf(const int32_t* displayMatrix);

/// Turns one plane of samples, `width` x `height` when it is done. Rows are `rowBytes` apart.
template <typename Sample>
void TurnPlane(const Orientation& turn, const uint8_t* from, ptrdiff_t fromRowBytes, uint8_t* to,
               ptrdiff_t toRowBytes, int32_t width, int32_t height) {
  for (int32_t y = 0; y < height; ++y) {
    const int32_t sourceY = turn.fromBelow ? height - 1 - y : y;
    auto* row = reinterpret_cast<Sample*>(to + y * toRowBytes);
    for (int32_t x = 0; x < width; ++x) {
      const int32_t sourceX = turn.fromRight ? width - 1 - x : x;
      const int32_t column = turn.transposed ? sourceY : sourceX;
      const int32_t line = turn.transposed ? sourceX : sourceY;
      row[x] = reinterpret_cast<const Sample*>(from + line * fromRowBytes)[column];
    }
  }
}

}  // namespace kelto::host
