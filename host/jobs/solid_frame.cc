#include "host/jobs/solid_frame.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/ycrcb_weights.h"

namespace kelto::host {
namespace {

/// Two pixels of the colour as the effect gives them: full range RGB, or studio levels of BT.601.
std::array<uint8_t, 8> TwoPixels(Colour colour, PixelLayout layout) {
  if (layout == PixelLayout::kBGRA) {
    return {colour.blue, colour.green, colour.red, 255, colour.blue, colour.green, colour.red, 255};
  }
  const auto level = [&](const ComponentWeights& weights, double range, double offset) {
    const double part =
        Weigh<double>(weights, colour.red, colour.green, colour.blue) / kWeightUnit / 255.0;
    return static_cast<uint8_t>(std::clamp(std::round(offset + range * part), 16.0, 240.0));
  };
  const uint8_t y = level(kLumaWeights, 219.0, 16.0);
  const uint8_t cb = level(kCbWeights, 224.0, kChromaOffset);
  const uint8_t cr = level(kCrWeights, 224.0, kChromaOffset);
  return {y, cb, y, cr, y, cb, y, cr};
}

}  // namespace

SolidFrame::SolidFrame(Colour colour, FrameSize size, PixelLayout layout)
    : size_(size), row_(static_cast<size_t>(size.width) * BytesPerPixel(layout)) {
  if (layout == PixelLayout::kRgba16) {
    const std::array<uint8_t, 4> samples{colour.red, colour.green, colour.blue, colour.alpha};
    // Both bytes of a word are the sample: 255 becomes 65535.
    for (size_t i = 0; i < row_.size(); ++i) row_[i] = samples[i / 2 % 4];
    return;
  }
  const std::array<uint8_t, 8> pixels = TwoPixels(colour, layout);
  for (size_t i = 0; i < row_.size(); ++i) row_[i] = pixels[i % pixels.size()];
}

}  // namespace kelto::host
