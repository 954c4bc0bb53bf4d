// Compressed films by the FFmpeg libraries.
#pragma once

#include <memory>
#include <string>

#include "host/film/codecs.h"
#include "host/film/formats.h"

namespace kelto::host {

/// Studio range, near-transparent quality, with colours, field order and pixel shape marked, in the
/// codec of the request, and with its sound. MP4 and MOV files play while they are still being
/// fetched; on the standard output, where nothing can be put in front afterwards, they are written
/// in fragments. A film of the same frames is the same file, byte for byte.
std::unique_ptr<FrameSink> OpenMp4(const FilmRequest& request);
std::unique_ptr<FrameSink> OpenMov(const FilmRequest& request);
std::unique_ptr<FrameSink> OpenMkv(const FilmRequest& request);
std::unique_ptr<FrameSink> OpenWebm(const FilmRequest& request);

}  // namespace kelto::host
