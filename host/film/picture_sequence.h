// Pictures, one a frame.
#pragma once

#include <memory>

#include "host/film/formats.h"

namespace kelto::host {

/// 8-bit RGB pictures marked as sRGB, with the shape of their pixels when those are not square.
/// Each one appears only when complete, so a film that fails leaves the pictures before the
/// failure. On the standard output they follow one another.
std::unique_ptr<FrameSink> OpenPngSequence(const FilmRequest& request);
std::unique_ptr<FrameSink> OpenTiffSequence(const FilmRequest& request);
#if !defined(_WIN32)
std::unique_ptr<FrameSink> OpenJpegSequence(const FilmRequest& request);
#endif

}  // namespace kelto::host
