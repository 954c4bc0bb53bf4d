// How a film comes and goes: out of a colour, and into it.
#pragma once

#include <cstdint>

#include "host/base/film_format.h"
#include "host/jobs/cross_fade.h"
#include "host/jobs/solid_frame.h"
#include "host/options/colour.h"

namespace kelto::host {

/// Frames that fade at the film's ends, none of them in both; the first or last one is the colour.
struct EndFadeLengths {
  int32_t in = 0, out = 0;
  Colour colour{};
};

/// Fades a film's frames.
class EndFades {
 public:
  EndFades(const EndFadeLengths& lengths, const FilmFormat& format, PixelLayout layout,
           int32_t frames);

  /// Frame `number` of the film as it is seen. The view holds until the next call, and while
  /// `frame` does.
  FrameView Of(const FrameView& frame, int32_t number);

 private:
  EndFadeLengths lengths_;
  int32_t frames_;
  SolidFrame solid_;
  CrossFade fade_;
};

}  // namespace kelto::host
