#include "host/options/fades.h"

#include <algorithm>

#include "host/options/rate.h"

namespace kelto::host {

int32_t FadeFrames(double seconds, FrameRate rate) {
  return seconds > 0.0 ? FramesOf(seconds, rate) : 0;
}

int32_t LongestFade(int32_t here, int32_t there) { return std::min(here, there) / 2; }

}  // namespace kelto::host
