// Rows in words or floats, premultiplied.
#include <algorithm>
#include <cmath>

#include "runtime/stills/deep_color.h"
#include "runtime/stills/row_finisher.h"

namespace kelto::stills {
namespace {

/// The largest number of half floats, which other programs' pictures keep to.
constexpr float kMostLight = 65504.0f;

float Sane(float value, float least, float most) {
  return std::isnan(value) ? 0.0f : std::clamp(value, least, most);
}

/// What arithmetic must not meet: infinite samples, and those that are no numbers.
void MakeSane(float* pixel, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i, pixel += 4) {
    for (int c = 0; c < 3; ++c) pixel[c] = Sane(pixel[c], -kMostLight, kMostLight);
    pixel[3] = Sane(pixel[3], 0.0f, 1.0f);
  }
}

void UnpremultiplyFloats(float* pixel, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i, pixel += 4) {
    const float a = pixel[3];
    if (a <= 0.0f || a >= 1.0f) continue;
    for (int c = 0; c < 3; ++c) pixel[c] = Sane(pixel[c] / a, -kMostLight, kMostLight);
  }
}

struct Words {
  using Sample = uint16_t;
  static constexpr Sample kFull = 65535;
  static Sample Times(Sample a, Sample b) {
    return static_cast<Sample>((uint32_t{a} * b + 32767u) / 65535u);
  }
  // No colour is brighter than its alpha, or it would be when the background shows through.
  static Sample Within(Sample color, Sample alpha) { return std::min(color, alpha); }
};

struct Floats {
  using Sample = float;
  static constexpr Sample kFull = 1.0f;
  static Sample Times(Sample a, Sample b) { return a * b; }
  // Colours beyond full scale are kept.
  static Sample Within(Sample color, Sample) { return color; }
};

/// Whether any pixel lets something through.
template <typename Kind>
bool ApplyAlpha(typename Kind::Sample* pixel, uint32_t pixels, Alpha alpha) {
  if (alpha == Alpha::kOpaque) return false;  // full scale as it is
  bool transparent = false;
  for (uint32_t i = 0; i < pixels; ++i, pixel += 4) {
    if (alpha == Alpha::kIgnored) pixel[3] = Kind::kFull;
    const auto a = pixel[3];
    if (a == Kind::kFull) continue;
    transparent = true;
    for (int c = 0; c < 3; ++c) {
      pixel[c] = alpha == Alpha::kStraight ? Kind::Times(pixel[c], a) : Kind::Within(pixel[c], a);
    }
  }
  return transparent;
}

class DeepFinisher final : public RowFinisher {
 public:
  DeepFinisher(const StillInfo& info, ColorModel model, PixelFormat format, Alpha alpha,
               bool* transparent)
      : format_(format),
        alpha_(alpha),
        converter_(info.icc, model, format),
        transparent_(transparent) {}

  void Finish(uint8_t* from, uint8_t* to, uint32_t pixels) override {
    void* row = from;
    const bool floats = format_ == PixelFormat::kRgbaFloat;
    if (floats) MakeSane(static_cast<float*>(row), pixels);
    // Profiles speak of whole colours.
    const bool whole = alpha_ == Alpha::kPremultiplied && converter_.has_profile();
    if (whole) MakeWhole(row, pixels);
    converter_.Convert(row, to, pixels);
    const Alpha left = whole ? Alpha::kStraight : alpha_;
    void* done = to;
    if (floats) MakeSane(static_cast<float*>(done), pixels);
    *transparent_ |= floats ? ApplyAlpha<Floats>(static_cast<float*>(done), pixels, left)
                            : ApplyAlpha<Words>(static_cast<uint16_t*>(done), pixels, left);
  }

 private:
  void MakeWhole(void* row, uint32_t pixels) const {
    if (format_ == PixelFormat::kBgra8) Unpremultiply(static_cast<uint8_t*>(row), pixels);
    if (format_ == PixelFormat::kRgba16) Unpremultiply(static_cast<uint16_t*>(row), pixels);
    if (format_ == PixelFormat::kRgbaFloat) UnpremultiplyFloats(static_cast<float*>(row), pixels);
  }

  const PixelFormat format_;
  const Alpha alpha_;
  const DeepColorConverter converter_;
  bool* const transparent_;
};

}  // namespace

std::unique_ptr<RowFinisher> MakeDeepFinisher(const StillInfo& info, ColorModel model,
                                              PixelFormat format, Alpha alpha, bool* transparent) {
  return std::make_unique<DeepFinisher>(info, model, format, alpha, transparent);
}

}  // namespace kelto::stills
