// Frames one after another without any header.
#pragma once

#include <memory>

#include "host/film/formats.h"

namespace kelto::host {

/// Rows are written without padding.
std::unique_ptr<FrameSink> OpenRawYCbYCr(const FilmRequest& request);
std::unique_ptr<FrameSink> OpenRawBGRA(const FilmRequest& request);

/// Words of the machine's order, of frames in PixelLayout::kRgba16: R, G, B, A with whole colours.
std::unique_ptr<FrameSink> OpenRawRgba64(const FilmRequest& request);

}  // namespace kelto::host
