#include "runtime/stills/row_finisher.h"

namespace kelto::stills {
namespace {

void MultiplyByAlpha(uint8_t* pixel, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i, pixel += 4) {
    const unsigned a = pixel[3];
    if (a == 255) continue;
    for (int c = 0; c < 3; ++c) pixel[c] = MultiplyBytes(pixel[c], a);
    pixel[3] = 255;
  }
}

void MakeOpaque(uint8_t* pixel, uint32_t pixels) {
  for (uint32_t i = 0; i < pixels; ++i) pixel[i * size_t{4} + 3] = 255;
}

class ByteFinisher final : public RowFinisher {
 public:
  ByteFinisher(const StillInfo& info, ColorModel model, PixelFormat format, Alpha alpha)
      : format_(format), alpha_(alpha), converter_(info.icc, model, format) {}

  void Finish(uint8_t* from, uint8_t* to, uint32_t pixels) override {
    // Profiles speak of whole colours.
    const bool whole = alpha_ == Alpha::kPremultiplied && converter_.has_profile();
    if (whole && format_ == PixelFormat::kBgra8) Unpremultiply(from, pixels);
    if (whole && format_ == PixelFormat::kRgba16) {
      Unpremultiply(static_cast<uint16_t*>(static_cast<void*>(from)), pixels);
    }
    converter_.Convert(from, to, pixels);
    if (alpha_ == Alpha::kStraight || whole) {
      MultiplyByAlpha(to, pixels);
    } else if (alpha_ == Alpha::kPremultiplied || alpha_ == Alpha::kIgnored) {
      MakeOpaque(to, pixels);
    }
  }

 private:
  const PixelFormat format_;
  const Alpha alpha_;
  const ColorConverter converter_;
};

}  // namespace

std::unique_ptr<RowFinisher> MakeByteFinisher(const StillInfo& info, ColorModel model,
                                              PixelFormat format, Alpha alpha) {
  return std::make_unique<ByteFinisher>(info, model, format, alpha);
}

}  // namespace kelto::stills
