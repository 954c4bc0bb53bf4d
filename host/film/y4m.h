// YUV4MPEG2: uncompressed planes with a line of text before the film and before each frame.
#pragma once

#include <memory>
#include <string>

#include "host/film/formats.h"

namespace kelto::host {

/// Planar 4:2:2 in studio range. The form cannot say which matrix the colours are in; readers go by
/// the frame's height, and MatrixFor does the same.
std::unique_ptr<FrameSink> OpenY4m(const FilmRequest& request);

/// The film's first line, with its line end.
std::string Y4mHeader(const FilmFormat& format);

}  // namespace kelto::host
