#include "deep/dither.h"

#include <cmath>
#include <vector>

namespace kelto {
namespace {

constexpr uint32_t kSixteenBits = 65535;

uint32_t SixteenBits(uint16_t value) { return value; }

uint32_t SixteenBits(float value) {
  if (!(value > 0.0f)) return 0;
  return value < 1.0f ? static_cast<uint32_t>(std::nearbyint(value * 65535.0f)) : kSixteenBits;
}

template <typename Sample>
void DitherRow(const Sample* from, bool hasAlpha, const std::vector<uint32_t>& thresholds,
               uint8_t* to) {
  for (const uint32_t threshold : thresholds) {
    for (size_t c = 0; c < 4; ++c) {
      const uint32_t value = c == 3 && !hasAlpha ? kSixteenBits : SixteenBits(from[c]);
      to[c] = static_cast<uint8_t>((value * 255 + threshold) / kSixteenBits);
    }
    from += 4;
    to += 4;
  }
}

}  // namespace

int32_t DitherThreshold(int32_t x, int32_t y) {
  // fract(52.9829189 * fract(0.06711056 * x + 0.00583715 * y)), in fixed point so that every
  // machine has the same. (Jimenez, "Next Generation Post Processing in Call of Duty: Advanced
  // Warfare", SIGGRAPH 2014.)
  const uint32_t slope =
      288237660U * static_cast<uint32_t>(x) + 25070368U * static_cast<uint32_t>(y);
  const auto noise =
      static_cast<uint32_t>((uint64_t{slope} * 55556618U) >> 20);  // 20 bits' fraction
  return static_cast<int32_t>((uint64_t{noise} * kSixteenBits) >> 32);
}

void DitherTo8Bits(const DeepSource& frame, uint8_t* bytes, ptrdiff_t rowBytes, int32_t left,
                   int32_t top) {
  std::vector<uint32_t> thresholds(static_cast<size_t>(frame.width));
  for (int32_t y = 0; y < frame.height; ++y) {
    for (int32_t x = 0; x < frame.width; ++x) {
      thresholds[static_cast<size_t>(x)] =
          static_cast<uint32_t>(DitherThreshold(left + x, top + y));
    }
    uint8_t* const to = bytes + y * rowBytes;
    if (frame.sample == DeepSample::kUnsigned16) {
      DitherRow(frame.Row<uint16_t>(y), frame.hasAlpha, thresholds, to);
    } else {
      DitherRow(frame.Row<float>(y), frame.hasAlpha, thresholds, to);
    }
  }
}

}  // namespace kelto
