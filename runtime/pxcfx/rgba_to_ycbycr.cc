// Full-range RGB to studio-range 4:2:2.
//
// Compressing to studio range and weighing are both linear, so that they are one weighted sum:
// w · (16 + 73/85 c) = 16 Σw + 73/85 (w · c). All of it is whole multiples of 1/850000, summed in
// 32-bit integers: the result is the exact one, rounded to nearest.
#include <algorithm>

#include "platform/pxcfx.h"
#include "platform/ycrcb_weights.h"
#include "runtime/pxcfx/image.h"
#include "runtime/pxcfx/studio.h"

namespace kelto::pxcfx {
namespace {

constexpr int32_t kUnit = kFullSteps * kWeightUnit;

/// What a component adds to the weighted sum of `samples` pixels, in units of 1/kUnit: offset,
/// studio black, and the half that turns the division into rounding.
constexpr int32_t Bias(const ComponentWeights& weights, int32_t offset, int32_t samples) {
  const int32_t black = Weigh(weights, kStudioBlack, kStudioBlack, kStudioBlack) * kFullSteps;
  return samples * (offset * kUnit + black) + samples * kUnit / 2;
}

/// The component of the sum of `kSamples` pixels (r, g, b are sums), as the mean over them.
template <int32_t kSamples>
inline uint8_t Component(const ComponentWeights& weights, int32_t bias, int32_t r, int32_t g,
                         int32_t b) {
  // Studio levels stay between 15 and 241: nothing to saturate, nothing negative.
  const uint32_t sum = static_cast<uint32_t>(Weigh(weights, r, g, b) * kStudioSteps + bias);
  return static_cast<uint8_t>(sum / (kSamples * kUnit));
}

template <int32_t kSamples>
inline uint8_t Chroma(const ComponentWeights& weights, int32_t r, int32_t g, int32_t b) {
  return Component<kSamples>(weights, Bias(weights, kChromaOffset, kSamples), r, g, b);
}

inline uint8_t Luma(const uint8_t* bgra) {
  return Component<1>(kLumaWeights, Bias(kLumaWeights, 0, 1), bgra[2], bgra[1], bgra[0]);
}

void ConvertRow(const uint8_t* bgra, uint8_t* ycbycr, int32_t width) {
  const int32_t pairs = width / 2;
  for (int32_t i = 0; i < pairs; ++i) {
    const uint8_t* left = bgra + 8 * ptrdiff_t{i};
    const uint8_t* right = left + 4;
    uint8_t* out = ycbycr + 4 * ptrdiff_t{i};
    const int32_t b = left[0] + right[0], g = left[1] + right[1], r = left[2] + right[2];
    out[0] = Luma(left);
    out[1] = Chroma<2>(kCbWeights, r, g, b);
    out[2] = Luma(right);
    out[3] = Chroma<2>(kCrWeights, r, g, b);
  }
  if (width % 2 != 0) {
    const uint8_t* last = bgra + 8 * ptrdiff_t{pairs};
    uint8_t* out = ycbycr + 4 * ptrdiff_t{pairs};
    out[0] = Luma(last);
    out[1] = Chroma<1>(kCbWeights, last[2], last[1], last[0]);
  }
}

}  // namespace
}  // namespace kelto::pxcfx

bool pxcRGBA2YCbYCr::Execute(const pxcImage& source, pxcImage& destination) {
  using namespace kelto::pxcfx;
  if (!HasLayout(source, kBgra) || !HasLayout(destination, k422)) return false;
  const int32_t width = std::min(source.width(), destination.width());
  const int32_t height = std::min(source.height(), destination.height());
  for (int32_t r = 0; r < height; ++r) ConvertRow(source.row(r), destination.row(r), width);
  return true;
}
