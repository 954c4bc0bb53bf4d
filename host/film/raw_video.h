// Frames one after another without any header.
#pragma once

#include <memory>

#include "host/film/formats.h"

namespace kelto::host {

/// Rows are written without padding.
std::unique_ptr<FrameSink> OpenRawYCbYCr(const FilmRequest& request);
std::unique_ptr<FrameSink> OpenRawBGRA(const FilmRequest& request);

}  // namespace kelto::host
