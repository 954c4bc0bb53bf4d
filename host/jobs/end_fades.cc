#include "host/jobs/end_fades.h"

namespace kelto::host {

EndFades::EndFades(const EndFadeLengths& lengths, const FilmFormat& format, PixelLayout layout,
                   int32_t frames)
    : lengths_(lengths),
      frames_(frames),
      solid_(lengths.colour, format.size, layout),
      fade_(format, layout) {}

FrameView EndFades::Of(const FrameView& frame, int32_t number) {
  // The colour alone at the very ends: there is a step before the first of a fade, or the last step
  // is its end.
  if (number < lengths_.in) {
    return fade_.Blend(solid_.View(), frame, number - 1, lengths_.in - 1);
  }
  const int32_t left = frames_ - 1 - number;
  if (left < lengths_.out) {
    return fade_.Blend(frame, solid_.View(), lengths_.out - 1 - left, lengths_.out - 1);
  }
  return frame;
}

}  // namespace kelto::host
