// Files of sound or moving pictures, opened by the FFmpeg libraries.
#pragma once

#include <memory>
#include <string>

#include "host/film/libav.h"

namespace kelto::host {

struct CloseMedia {
  void operator()(AVFormatContext* file) const { avformat_close_input(&file); }
};
using MediaFile = std::unique_ptr<AVFormatContext, CloseMedia>;

/// Opens the file `path` and looks at its streams. `what` ("a video", "sound") is what it should
/// be, for the message. Only ordinary files are opened, and none that they refer to by an address.
/// Throws Error, also where looking at the file would pass the limits of media_limits.h.
MediaFile OpenMedia(const std::string& path, const std::string& what);

/// The stream of moving pictures, -1 when there is none. A cover picture is none.
int PictureStreamOf(AVFormatContext& file);
/// The stream of sound that players would choose, -1 when there is none.
int SoundStreamOf(AVFormatContext& file);

/// The time, in seconds of the file's own clock, at which its pictures begin, or its sound when it
/// has no pictures: 0 for the film that they go into.
double StartOf(AVFormatContext& file);

/// Throws Error for a stream of sound or pictures beyond the limits. `path` is the file's.
void CheckStream(const AVStream& stream, const std::string& path);

/// A decoder for a stream that CheckStream lets pass, opened. `path` is for the message. Throws
/// Error.
Owned<AVCodecContext> OpenDecoder(const AVStream& stream, const std::string& path);

}  // namespace kelto::host
