// What happens to a decoded row before it stands in the caller's buffer: colours to sRGB, and alpha
// as the buffer is to have it.
#pragma once

#include <cstdint>
#include <memory>

#include "runtime/stills/color.h"
#include "runtime/stills/decoder.h"

namespace kelto::stills {

/// What alpha means in the rows that a decoder hands over.
enum class Alpha {
  kOpaque,         ///< alpha is 255 throughout, or full scale
  kIgnored,        ///< nothing: what damaged files leave there must not show
  kStraight,       ///< colours are whole, alpha apart
  kPremultiplied,  ///< colours are multiplied by alpha already
};

/// A row in a decoder's layout, and where it goes.
class RowFinisher {
 public:
  virtual ~RowFinisher() = default;
  /// `from` may be changed; it may be `to` where both have one layout.
  virtual void Finish(uint8_t* from, uint8_t* to, uint32_t pixels) = 0;

 protected:
  RowFinisher() = default;
  RowFinisher(const RowFinisher&) = delete;
  RowFinisher& operator=(const RowFinisher&) = delete;
};

/// To B, G, R, A of eight bits, drawn over black. Throws std::bad_alloc.
std::unique_ptr<RowFinisher> MakeByteFinisher(const StillInfo& info, ColorModel model,
                                              PixelFormat format, Alpha alpha);
/// To R, G, B, A, premultiplied: floats from kRgbaFloat, words from all others. Sets `*transparent`
/// where a pixel is. Throws std::bad_alloc.
std::unique_ptr<RowFinisher> MakeDeepFinisher(const StillInfo& info, ColorModel model,
                                              PixelFormat format, Alpha alpha, bool* transparent);

/// Colours multiplied by alpha to whole ones. Full scale of a sample type is its largest value.
template <typename T>
void Unpremultiply(T* pixel, uint32_t pixels) {
  constexpr uint32_t kFull = static_cast<T>(~T{0});
  for (uint32_t i = 0; i < pixels; ++i, pixel += 4) {
    const uint32_t a = pixel[3];
    if (a == 0 || a == kFull) continue;
    for (int c = 0; c < 3; ++c) {
      const uint32_t whole = (pixel[c] * kFull + a / 2) / a;
      pixel[c] = static_cast<T>(whole < kFull ? whole : kFull);
    }
  }
}

}  // namespace kelto::stills
