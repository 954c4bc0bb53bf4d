// Frames in the forms that the effect gives them, made without it.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "host/film/formats.h"
#include "tests/host/support/pictures.h"

namespace kelto::test {

/// A progressive film at the usual rate.
inline host::FilmRequest Request(const std::string& output, host::FrameSize size, int32_t frames) {
  host::FilmRequest request;
  request.output = output;
  request.format.size = size;
  request.frames = frames;
  return request;
}

/// A frame with its pixels.
struct EffectFrame {
  host::FrameSize size;
  std::vector<uint8_t> bytes;
  host::FrameView View() const {
    const ptrdiff_t rowBytes = static_cast<ptrdiff_t>(bytes.size()) / size.height;
    return {bytes.data(), rowBytes, size};
  }
};

/// Y Cb Y Cr of a pair of pixels of one colour: studio-range RGB by the BT.601 weights, unscaled.
inline std::vector<uint8_t> EffectPair(Rgb colour) {
  const auto studio = [](uint8_t level) { return 16.0 + level * 219.0 / 255.0; };
  const double r = studio(colour.r), g = studio(colour.g), b = studio(colour.b);
  const double y = 0.299 * r + 0.587 * g + 0.114 * b;
  const auto byte = [](double value) { return static_cast<uint8_t>(std::lround(value)); };
  return {byte(y), byte(128.0 + (b - y) / 1.772), byte(y), byte(128.0 + (r - y) / 1.402)};
}

/// A 4:2:2 frame; `pixel` is asked at the left pixel of each pair.
inline EffectFrame MakeYCbYCr(host::FrameSize size, const PixelFunction& pixel) {
  EffectFrame frame{size, {}};
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < size.width; x += 2) {
      const auto pair = EffectPair(pixel(x, y));
      frame.bytes.insert(frame.bytes.end(), pair.begin(), pair.end());
    }
  }
  return frame;
}

inline EffectFrame MakeBGRA(host::FrameSize size, const PixelFunction& pixel) {
  EffectFrame frame{size, {}};
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < size.width; ++x) {
      const Rgb c = pixel(x, y);
      frame.bytes.insert(frame.bytes.end(), {c.b, c.g, c.r, 255});
    }
  }
  return frame;
}

}  // namespace kelto::test
