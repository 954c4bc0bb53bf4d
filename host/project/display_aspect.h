// The shape of a frame as it is shown.
#pragma once

#include <string>
#include <string_view>

#include "host/base/film_format.h"

namespace kelto::host {

/// Pixels that make a frame of `size` appear in a shape: "16:9", "2.39:1" or "1.85". Exact where
/// their shape can be expressed in numbers up to 65535, else as near as these come. Throws
/// UsageError.
SampleAspect ParseDisplayAspect(std::string_view text, FrameSize size);

/// The frame's shape as shown, in lowest terms such as "16:9"; of that ParseDisplayAspect makes the
/// same pixels.
std::string DisplayAspectText(const FilmFormat& format);

}  // namespace kelto::host
