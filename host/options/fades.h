// How long fades between the scenes of a show are.
#pragma once

#include <cstdint>

#include "host/base/film_format.h"

namespace kelto::host {

/// The whole frames nearest to `seconds`, at least one; none for 0. Throws UsageError above
/// kMaxFrames.
int32_t FadeFrames(double seconds, FrameRate rate);

/// Frames of the longest fade between two scenes that are seen for so many frames: half of the
/// shorter one, so that the fades at its two ends do not meet.
int32_t LongestFade(int32_t here, int32_t there);

}  // namespace kelto::host
