// From one picture to the next.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/film_format.h"
#include "host/jobs/solid_frame.h"
#include "host/options/colour.h"

namespace kelto::host {

enum class FadeKind {
  kCross,  ///< one picture through the other
  kDip,    ///< into a colour, and out of it
};

/// Blends two frames of one size and layout; holds the result.
class CrossFade {
 public:
  /// `colour` is the one that a dip goes through.
  CrossFade(const FilmFormat& format, PixelLayout layout, FadeKind kind = FadeKind::kCross,
            Colour colour = {});

  /// Frame `step` of a fade of `steps` frames from `from` to `to`: neither the first nor the last
  /// is one of them alone; steps -1 and `steps` are. In the middle of a dip there is the colour
  /// alone. Levels are mixed as they are coded, as video mixers do. In interlaced films the later
  /// field is half a step further. The view holds until the next call.
  FrameView Blend(const FrameView& from, const FrameView& to, int32_t step, int32_t steps);

 private:
  bool IsLaterField(int32_t row) const;

  FilmFormat format_;
  PixelLayout layout_;
  FadeKind kind_;
  SolidFrame colour_;
  size_t rowBytes_;
  std::vector<uint8_t> bytes_;
};

}  // namespace kelto::host
