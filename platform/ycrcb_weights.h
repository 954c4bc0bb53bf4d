// The RGB to YCrCb weights that the image library and the conversion library share, in whole
// ten-thousandths so that integer arithmetic is exact.
#pragma once

#include <cstdint>

namespace kelto {

constexpr int32_t kWeightUnit = 10000;

/// One component: (r R + g G + b B) / kWeightUnit, plus an offset of 128 for chroma.
struct ComponentWeights {
  int32_t r, g, b;
};

// ITU-R BT.601 luma weights and the colour differences scaled to +-0.5, rounded to four
// decimals: the chroma rows sum to 0.0001, not to 0.
constexpr ComponentWeights kLumaWeights = {2989, 5866, 1145};
constexpr ComponentWeights kCrWeights = {5000, -4183, -816};
constexpr ComponentWeights kCbWeights = {-1687, -3312, 5000};

constexpr int32_t kChromaOffset = 128;

/// The component in ten-thousandths, without offset. Levels up to 255 come to integers below
/// 2^24, so that the sum is exact in float, too.
template <typename T>
constexpr T Weigh(const ComponentWeights& weights, T r, T g, T b) {
  return static_cast<T>(weights.r) * r + static_cast<T>(weights.g) * g +
         static_cast<T>(weights.b) * b;
}

}  // namespace kelto
