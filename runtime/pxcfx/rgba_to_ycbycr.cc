// Full-range RGB to studio-range 4:2:2.
//
// Compressing to studio range and weighing are both linear, so that they are one weighted sum:
// w · (16 + 73/85 c) = 16 Σw + 73/85 (w · c). All of it is whole multiples of 1/850000, summed in
// 32-bit integers: the result is the exact one, rounded to nearest.
#include <algorithm>
#include <cstring>

#include "platform/pxcfx.h"
#include "platform/vector_clones.h"
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
inline uint32_t Component(const ComponentWeights& weights, int32_t bias, int32_t r, int32_t g,
                          int32_t b) {
  // Studio levels stay between 15 and 241: nothing to saturate, nothing negative.
  const uint32_t sum = static_cast<uint32_t>(Weigh(weights, r, g, b) * kStudioSteps + bias);
  return sum / (kSamples * kUnit);
}

template <int32_t kSamples>
inline uint32_t Chroma(const ComponentWeights& weights, int32_t r, int32_t g, int32_t b) {
  return Component<kSamples>(weights, Bias(weights, kChromaOffset, kSamples), r, g, b);
}

/// Bytes B, G, R of a little-endian word.
struct Color {
  int32_t b, g, r;

  explicit Color(uint32_t word)
      : b(static_cast<int32_t>(word & 255)),
        g(static_cast<int32_t>(word >> 8 & 255)),
        r(static_cast<int32_t>(word >> 16 & 255)) {}
};

inline uint32_t Luma(const Color& color) {
  return Component<1>(kLumaWeights, Bias(kLumaWeights, 0, 1), color.r, color.g, color.b);
}

/// Pairs of pixels taken at a time, through arrays that the compiler knows to lie apart.
constexpr int kBlock = 256;

/// Bytes Y, Cb, Y, Cr of each pair as a little-endian word.
KELTO_VECTOR_CLONES
void ConvertPairs(const uint32_t (&pixels)[2 * kBlock], uint32_t (&pairs)[kBlock], int count) {
  for (int i = 0; i < count; ++i) {
    const Color left(pixels[ptrdiff_t{2} * i]), right(pixels[ptrdiff_t{2} * i + 1]);
    const int32_t r = left.r + right.r, g = left.g + right.g, b = left.b + right.b;
    pairs[i] = Luma(left) | Chroma<2>(kCbWeights, r, g, b) << 8 | Luma(right) << 16 |
               Chroma<2>(kCrWeights, r, g, b) << 24;
  }
}

void ConvertRow(const uint8_t* bgra, uint8_t* ycbycr, int32_t width) {
  uint32_t pixels[2 * kBlock] = {}, pairs[kBlock];
  const int32_t total = width / 2;
  for (int32_t first = 0; first < total; first += kBlock) {
    const int count = std::min(kBlock, total - first);
    std::memcpy(pixels, bgra + 8 * ptrdiff_t{first}, 8 * static_cast<size_t>(count));
    ConvertPairs(pixels, pairs, count);
    std::memcpy(ycbycr + 4 * ptrdiff_t{first}, pairs, 4 * static_cast<size_t>(count));
  }
  if (width % 2 != 0) {
    uint32_t pixel;
    std::memcpy(&pixel, bgra + 8 * ptrdiff_t{total}, 4);
    const Color last(pixel);
    uint8_t* out = ycbycr + 4 * ptrdiff_t{total};
    out[0] = static_cast<uint8_t>(Luma(last));
    out[1] = static_cast<uint8_t>(Chroma<1>(kCbWeights, last.r, last.g, last.b));
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
