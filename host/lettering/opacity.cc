#include <algorithm>

#include "host/lettering/lettering.h"

namespace kelto::host {

double CaptionOpacity(double frame, int32_t from, int32_t until, FrameRate rate) {
  constexpr double kFadeSeconds = 0.6;
  const double shown = until - from;
  const double fade = std::max(1.0, std::min(kFadeSeconds * rate.PerSecond(), shown / 4));
  // The first frame and the last have a step of it already.
  const double since = frame - from + 1, left = until - frame;
  const double part = std::clamp(std::min(since, left) / fade, 0.0, 1.0);
  return part * part * (3 - 2 * part);
}

}  // namespace kelto::host
