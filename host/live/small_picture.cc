#include "host/live/small_picture.h"

#include <algorithm>
#include <cmath>

namespace kelto::host {
namespace {

/// Samples of a pixel in each direction.
constexpr int32_t kMostSamples = 4;

struct ThreeSums {
  int64_t one = 0, two = 0, three = 0;
};

/// Which of `length` places a small pixel at `index` of `count` is the mean of.
struct SampledPlaces {
  SampledPlaces(int32_t index, int32_t count, int32_t length)
      : first(int64_t{index} * length / count),
        width(std::max<int64_t>(1, (int64_t{index} + 1) * length / count - first)),
        samples(static_cast<int32_t>(std::min<int64_t>(width, kMostSamples))) {}
  int32_t At(int32_t sample) const {
    return static_cast<int32_t>(first + (2 * sample + 1) * width / (2 * samples));
  }

  int64_t first, width;
  int32_t samples;
};

/// Adds the parts of a frame's pixel, as its layout has them.
void AddPixel(const uint8_t* row, PixelLayout layout, int32_t x, ThreeSums& sums) {
  switch (layout) {
    case PixelLayout::kYCbYCr: {
      const uint8_t* pair = row + ptrdiff_t{x / 2} * 4;
      sums.one += pair[x % 2 * 2];
      sums.two += pair[1];
      sums.three += pair[3];
      return;
    }
    case PixelLayout::kBGRA: {
      const uint8_t* pixel = row + ptrdiff_t{x} * 4;
      sums.one += pixel[2];
      sums.two += pixel[1];
      sums.three += pixel[0];
      return;
    }
    case PixelLayout::kRgba16: {
      const void* const words = row;
      const auto* pixel = static_cast<const uint16_t*>(words) + ptrdiff_t{x} * 4;
      sums.one += pixel[0] >> 8;
      sums.two += pixel[1] >> 8;
      sums.three += pixel[2] >> 8;
      return;
    }
  }
}

uint8_t ByteOfLight(double light) {
  return static_cast<uint8_t>(std::lround(std::clamp(light, 0.0, 1.0) * 255.0));
}

void PutMean(const ThreeSums& sums, PixelLayout layout, int32_t count, uint8_t* to) {
  const double one = static_cast<double>(sums.one) / count,
               two = static_cast<double>(sums.two) / count,
               three = static_cast<double>(sums.three) / count;
  if (layout != PixelLayout::kYCbYCr) {
    to[0] = ByteOfLight(one / 255);
    to[1] = ByteOfLight(two / 255);
    to[2] = ByteOfLight(three / 255);
    return;
  }
  // The effect's weights are BT.601's, and all parts span 219 levels.
  const double light = (one - 16) / 219;
  const double red = light + 1.402 * (three - 128) / 219, blue = light + 1.772 * (two - 128) / 219;
  to[0] = ByteOfLight(red);
  to[1] = ByteOfLight((light - 0.299 * red - 0.114 * blue) / 0.587);
  to[2] = ByteOfLight(blue);
}

}  // namespace

std::vector<uint8_t> SmallPicture(const FrameView& frame, PixelLayout layout, FrameSize size) {
  std::vector<uint8_t> small(size_t{4} * size.width * size.height, 255);
  uint8_t* to = small.data();
  for (int32_t y = 0; y < size.height; ++y) {
    const SampledPlaces rows(y, size.height, frame.size.height);
    for (int32_t x = 0; x < size.width; ++x, to += 4) {
      const SampledPlaces columns(x, size.width, frame.size.width);
      ThreeSums sums;
      for (int32_t i = 0; i < rows.samples; ++i) {
        const uint8_t* row = frame.Row(rows.At(i));
        for (int32_t j = 0; j < columns.samples; ++j) AddPixel(row, layout, columns.At(j), sums);
      }
      PutMean(sums, layout, rows.samples * columns.samples, to);
    }
  }
  return small;
}

}  // namespace kelto::host
