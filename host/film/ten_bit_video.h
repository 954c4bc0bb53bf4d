// Frames of ten bits one after another without any header.
#pragma once

#include <memory>

#include "host/film/formats.h"

namespace kelto::host {

/// Of frames in PixelLayout::kRgba16: planes of Y, Cb and Cr, chroma of half the width, ten bits in
/// the low end of each word; studio range with the film's matrix (see colour_matrix.h). With the
/// FFmpeg libraries and without, levels differ by one at the most.
std::unique_ptr<FrameSink> OpenRawYuv422P10(const FilmRequest& request);

}  // namespace kelto::host
