// Colours of a picture to sRGB with all their bits.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "runtime/stills/color.h"

namespace kelto::stills {

class LcmsContext;

/// Converts rows of one layout to R, G, B, A of sRGB in words or, from kRgbaFloat alone, in floats.
/// Alpha is carried over. Samples of eight bits become words of the same light, v * 257.
class DeepColorConverter {
 public:
  /// Profiles count as ColorConverter has it. Throws std::bad_alloc.
  DeepColorConverter(std::span<const uint8_t> icc, ColorModel model, PixelFormat format);
  DeepColorConverter(const DeepColorConverter&) = delete;
  DeepColorConverter& operator=(const DeepColorConverter&) = delete;

  /// Whether colours change; not so without a profile and with one that is sRGB in effect.
  bool has_profile() const { return transform_ != nullptr; }
  /// `from` and `to` may be the same row in kRgba16 and kRgbaFloat.
  void Convert(const void* from, void* to, uint32_t pixels) const;

 private:
  const PixelFormat format_;
  bool grey_ = false;  ///< whether the transform sees grey, and no alpha
  std::shared_ptr<LcmsContext> context_;
  std::shared_ptr<void> transform_;  ///< of Little CMS; goes before its context
};

}  // namespace kelto::stills
