// Compressed films by the FFmpeg libraries.
#pragma once

#include <memory>

#include "host/film/formats.h"

namespace kelto::host {

/// H.264, 4:2:0 studio range, near-transparent quality, with its colours, field order and square
/// pixels marked. MP4 and MOV files play while they are still being fetched; on the standard
/// output, where nothing can be put in front afterwards, they are written in fragments.
std::unique_ptr<FrameSink> OpenMp4(const FilmRequest& request);
std::unique_ptr<FrameSink> OpenMov(const FilmRequest& request);
std::unique_ptr<FrameSink> OpenMkv(const FilmRequest& request);

}  // namespace kelto::host
