// What may lie beside a photo in place of a colour: the photo itself, blurred.
#pragma once

#include <cstdint>
#include <vector>

#include "deep/picture.h"
#include "host/base/film_format.h"

namespace kelto::host {

/// A photo so small and soft that it can cover a frame without drawing the eye.
class BlurredPhoto {
 public:
  /// `pixels` of the upright photo, B, G, R, A without padding. What is transparent counts as
  /// black.
  BlurredPhoto(const std::vector<uint8_t>& pixels, int32_t width, int32_t height);
  /// The same of an upright photo with all its bits.
  explicit BlurredPhoto(const DeepSource& photo);

  /// A whole frame of the film, rows without padding: the photo's middle in the frame's shape,
  /// enlarged, blurred and darkened. Dithered where the layout has eight bits.
  std::vector<uint8_t> Frame(const FilmFormat& format, PixelLayout layout) const;

 private:
  template <typename BgrAt>
  void Keep(int32_t width, int32_t height, double unit, const BgrAt& bgrAt);

  int32_t width_ = 0, height_ = 0;
  std::vector<float> pixels_;  ///< B, G, R, 0..255
};

}  // namespace kelto::host
