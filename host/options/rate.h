// Frame rates and lengths.
#pragma once

#include <string_view>

#include "host/base/film_format.h"

namespace kelto::host {

/// Longest film in frames: more than four days at 25 fps.
constexpr int32_t kMaxFrames = 10'000'000;

/// Reads "25", "12.5", "30000/1001" or the customary short forms of the 1000/1001 rates: "29.97",
/// "23.976", "23.98", "59.94" ... become the exact fractions that they stand for. Rates go from 0.1
/// to 1000; throws UsageError otherwise.
FrameRate ParseRate(std::string_view text);

/// Reads a count of frames, 1..kMaxFrames; throws UsageError otherwise.
int32_t ParseFrames(std::string_view text);

/// Reads a length above 0; throws UsageError otherwise.
double ParseSeconds(std::string_view text);

/// The whole frames nearest to `seconds`, at least one. Throws UsageError above kMaxFrames.
int32_t FramesOf(double seconds, FrameRate rate);

}  // namespace kelto::host
