// Studio-range 4:2:2 to full-range RGB.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/pxcfx.h"
#include "platform/vector_clones.h"
#include "platform/ycrcb_weights.h"
#include "runtime/pxcfx/image.h"
#include "runtime/pxcfx/studio.h"

namespace kelto::pxcfx {
namespace {

// The colour differences are Cr = (R - Y) / 2(1 - wr) and Cb = (B - Y) / 2(1 - wb) before the
// weights are rounded to four decimals. Solved in that form, and for green through Y = wr R + wg G
// + wb B, the inverse is exact and greys stay grey. Everything is stretched from studio to full
// range.
constexpr double kStretch = static_cast<double>(kFullSteps) / kStudioSteps;

constexpr double Fraction(int32_t weight) { return static_cast<double>(weight) / kWeightUnit; }

constexpr double kRedPerCr = 2 * (1 - Fraction(kLumaWeights.r)) * kStretch;
constexpr double kBluePerCb = 2 * (1 - Fraction(kLumaWeights.b)) * kStretch;
constexpr double kGreenPerCr = -kRedPerCr * kLumaWeights.r / kLumaWeights.g;
constexpr double kGreenPerCb = -kBluePerCb * kLumaWeights.b / kLumaWeights.g;

inline uint32_t NearestLevel(float value) {
  // Below 0 the way of rounding does not matter, and a call of lround is not vectorized.
  // NOLINTNEXTLINE(bugprone-incorrect-roundings)
  const int32_t level = static_cast<int32_t>(value + 0.5f);
  return static_cast<uint32_t>(std::clamp(level, 0, 255));
}

/// Byte `index` of a little-endian word.
inline float Byte(uint32_t word, int index) {
  return static_cast<float>(static_cast<int32_t>(word >> 8 * index & 255));
}

/// Full-range colour that the chroma of a pair adds to the grey of either of its pixels.
struct Tint {
  float r, g, b;

  Tint(float cbByte, float crByte) {
    const float cb = cbByte - kChromaOffset, cr = crByte - kChromaOffset;
    r = static_cast<float>(kRedPerCr) * cr;
    g = static_cast<float>(kGreenPerCr) * cr + static_cast<float>(kGreenPerCb) * cb;
    b = static_cast<float>(kBluePerCb) * cb;
  }

  /// Bytes B, G, R, A as a little-endian word.
  uint32_t Pixel(float y) const {
    const float grey = static_cast<float>(kStretch) * (y - kStudioBlack);
    return NearestLevel(grey + b) | NearestLevel(grey + g) << 8 | NearestLevel(grey + r) << 16 |
           0xFF000000u;
  }
};

/// Pairs of pixels taken at a time, through arrays that the compiler knows to lie apart.
constexpr int kBlock = 256;

KELTO_VECTOR_CLONES
void ConvertPairs(const uint32_t (&pairs)[kBlock], uint32_t (&pixels)[2 * kBlock], int count) {
  for (int i = 0; i < count; ++i) {
    const Tint tint(Byte(pairs[i], 1), Byte(pairs[i], 3));
    pixels[ptrdiff_t{2} * i] = tint.Pixel(Byte(pairs[i], 0));
    pixels[ptrdiff_t{2} * i + 1] = tint.Pixel(Byte(pairs[i], 2));
  }
}

void ConvertRow(const uint8_t* ycbycr, uint8_t* bgra, int32_t width) {
  uint32_t pairs[kBlock] = {}, pixels[2 * kBlock];
  const int32_t total = width / 2;
  for (int32_t first = 0; first < total; first += kBlock) {
    const int count = std::min(kBlock, total - first);
    std::memcpy(pairs, ycbycr + 4 * ptrdiff_t{first}, 4 * static_cast<size_t>(count));
    ConvertPairs(pairs, pixels, count);
    std::memcpy(bgra + 8 * ptrdiff_t{first}, pixels, 8 * static_cast<size_t>(count));
  }
  if (width % 2 != 0) {
    const uint8_t* last = ycbycr + 4 * ptrdiff_t{total};
    const float cr = total > 0 ? last[-1] : static_cast<float>(kChromaOffset);
    const uint32_t pixel = Tint(last[1], cr).Pixel(last[0]);
    std::memcpy(bgra + 8 * ptrdiff_t{total}, &pixel, 4);
  }
}

}  // namespace
}  // namespace kelto::pxcfx

bool pxcYCbYCr2RGBA::Execute(const pxcImage& source, pxcImage& destination) {
  using namespace kelto::pxcfx;
  if (!HasLayout(source, k422) || !HasLayout(destination, kBgra)) return false;
  const int32_t width = std::min(source.width(), destination.width());
  const int32_t height = std::min(source.height(), destination.height());
  for (int32_t r = 0; r < height; ++r) ConvertRow(source.row(r), destination.row(r), width);
  return true;
}
