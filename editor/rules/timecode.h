// Times as texts.
#pragma once

#include <cstdint>
#include <string>

#include "host/base/film_format.h"

namespace kelto::editor {

/// "00:01:02:13": hours, minutes, seconds and frames, counting every frame (no drop-frame), at the
/// rate's next integer.
std::string Timecode(int32_t frame, host::FrameRate rate);

/// "62.5 s", with two decimals at most.
std::string SecondsText(double seconds);

}  // namespace kelto::editor
