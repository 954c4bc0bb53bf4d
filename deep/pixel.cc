#include "deep/pixel.h"

#include <algorithm>
#include <cmath>

namespace kelto {
namespace {

template <typename Curve>
DeepPixel OnStraightColours(const DeepPixel& pixel, Curve curve) {
  const double alpha = pixel[3] > 0.0 ? pixel[3] : 1.0;
  return {curve(pixel[0] / alpha) * alpha, curve(pixel[1] / alpha) * alpha,
          curve(pixel[2] / alpha) * alpha, pixel[3]};
}

/// To nearest, ties to even.
uint16_t Rounded(double value, double most) {
  const double within = value > 0.0 ? std::min(value, most) : 0.0;
  return static_cast<uint16_t>(std::nearbyint(within * 65535.0));
}

}  // namespace

DeepPixel ReadPixel(const DeepSource& from, int32_t x, int32_t y) {
  DeepPixel pixel;
  for (int32_t c = 0; c < 4; ++c) {
    pixel[static_cast<size_t>(c)] = from.sample == DeepSample::kUnsigned16
                                        ? from.Row<uint16_t>(y)[4 * x + c] / 65535.0
                                        : double{from.Row<float>(y)[4 * x + c]};
  }
  if (!from.hasAlpha) pixel[3] = 1.0;
  return pixel;
}

void WritePixel(const DeepTarget& to, int32_t x, int32_t y, const DeepPixel& pixel) {
  const double alpha = to.hasAlpha ? pixel[3] : 1.0;
  if (to.sample == DeepSample::kFloat32) {
    float* const at = to.Row<float>(y) + ptrdiff_t{4} * x;
    for (size_t c = 0; c < 3; ++c) at[c] = static_cast<float>(pixel[c]);
    at[3] = static_cast<float>(alpha);
    return;
  }
  uint16_t* const at = to.Row<uint16_t>(y) + ptrdiff_t{4} * x;
  for (size_t c = 0; c < 3; ++c)
    at[c] = Rounded(pixel[c], alpha > 0.0 ? std::min(alpha, 1.0) : 0.0);
  at[3] = Rounded(alpha, 1.0);
}

double DecodeLight(double encoded) {
  const double value = std::abs(encoded);
  const double light = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  return std::copysign(light, encoded);
}

double EncodeLight(double linear) {
  const double value = std::abs(linear);
  const double encoded =
      value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
  return std::copysign(encoded, linear);
}

DeepPixel DecodeLight(const DeepPixel& pixel) {
  return OnStraightColours(pixel, [](double value) { return DecodeLight(value); });
}

DeepPixel EncodeLight(const DeepPixel& pixel) {
  return OnStraightColours(pixel, [](double value) { return EncodeLight(value); });
}

DeepPixel HeldWithinAlpha(const DeepPixel& pixel, bool clamped) {
  DeepPixel held = pixel;
  for (size_t c = 0; c < 3; ++c) {
    if (pixel[3] > 1.0) held[c] /= pixel[3];
    if (pixel[3] < 0.0 && held[c] < 0.0) held[c] = std::min(held[c] - pixel[3], 0.0);
  }
  held[3] = std::clamp(pixel[3], 0.0, 1.0);
  if (clamped) {
    for (size_t c = 0; c < 3; ++c) held[c] = std::clamp(held[c], 0.0, held[3]);
  }
  return held;
}

DeepPixel Over(const DeepPixel& front, double coverage, const DeepPixel& behind) {
  DeepPixel mixed;
  for (size_t c = 0; c < 4; ++c) {
    mixed[c] = coverage * front[c] + (1.0 - coverage * front[3]) * behind[c];
  }
  return mixed;
}

}  // namespace kelto
