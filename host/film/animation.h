// Moving pictures for messages and web pages, which browsers play over and over: GIF, APNG and
// animated WebP.
#pragma once

#include <memory>

#include "host/film/formats.h"
#include "host/film/frame_sink.h"

namespace kelto::host {

/// The best 256 colours for all frames together, dithered. All frames are in memory until the end.
std::unique_ptr<FrameSink> OpenGif(const FilmRequest& request);
/// Lossless.
std::unique_ptr<FrameSink> OpenApng(const FilmRequest& request);
/// Coded as WebP codes photographs.
std::unique_ptr<FrameSink> OpenWebp(const FilmRequest& request);

/// Throws UsageError for an animation of this kind that would be too large for memory, or that
/// cannot go where it is to go.
void CheckAnimation(const FilmKind& kind, const FilmRequest& request);

}  // namespace kelto::host
