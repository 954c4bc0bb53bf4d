// The work that the engine and its peers are compared at: a view moving over a 24-megapixel
// picture, drawn at 1920 x 1080.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "resample/job.h"

namespace kelto::bench {

constexpr int32_t kImageWidth = 6000, kImageHeight = 4000;
constexpr int32_t kFrameWidth = 1920, kFrameHeight = 1080;

/// Detail everywhere: nothing may be quick because the picture is flat.
inline std::vector<uint8_t> NoisyBytes(size_t count) {
  std::vector<uint8_t> bytes(count);
  std::minstd_rand random(7);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random() >> 8);
  return bytes;
}

/// Source pixels, edges of the first and the size.
struct View {
  double left, top, width, height;
};

/// The view of frame `frame`: it moves by fractions of a pixel and comes back after 64 frames.
/// Views smaller than the image stay inside it.
inline View MovingView(double scale, int frame) {
  const double width = kFrameWidth * scale, height = kFrameHeight * scale;
  const double step = 0.25 + 0.0625 * (frame % 64);
  const double roomX = kImageWidth - width, roomY = kImageHeight - height;
  return {roomX > 32 ? roomX / 2 + step : roomX / 2, roomY > 32 ? roomY / 2 + step : roomY / 2,
          width, height};
}

inline RectF SourceRect(const View& view) {
  return {static_cast<float>(view.left + 0.5), static_cast<float>(view.top + 0.5),
          static_cast<float>(view.left + view.width - 0.5),
          static_cast<float>(view.top + view.height - 0.5)};
}

}  // namespace kelto::bench
