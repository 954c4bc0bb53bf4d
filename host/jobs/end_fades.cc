#include "host/jobs/end_fades.h"

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

EndFades::EndFades(const EndFadeLengths& lengths, const FilmFormat& format, PixelLayout layout,
                   int32_t frames)
    : lengths_(lengths),
      format_(format),
      frames_(frames),
      rowBytes_(static_cast<size_t>(format.size.width) * BytesPerPixel(layout)),
      solid_(rowBytes_),
      fade_(format, layout) {
  const std::array<uint8_t, 8> pixels = TwoPixels(lengths.colour, layout);
  for (size_t i = 0; i < solid_.size(); ++i) solid_[i] = pixels[i % pixels.size()];
}

FrameView EndFades::Of(const FrameView& frame, int32_t number) {
  // The colour alone at the very ends: there is a step before the first of a fade, or the last step
  // is its end.
  if (number < lengths_.in) {
    return fade_.Blend(Solid(), frame, number - 1, lengths_.in - 1);
  }
  const int32_t left = frames_ - 1 - number;
  if (left < lengths_.out) {
    return fade_.Blend(frame, Solid(), lengths_.out - 1 - left, lengths_.out - 1);
  }
  return frame;
}

/// All rows are the one.
FrameView EndFades::Solid() const { return {solid_.data(), 0, format_.size}; }

}  // namespace kelto::host
