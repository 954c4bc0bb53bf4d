// Videos for tests: written by the command's own encoder, or by the ffmpeg program where it is to
// be something that the encoder does not write.
#pragma once

#include <functional>
#include <string>

#include "host/film/formats.h"
#include "tests/host/support/effect_frames.h"

namespace kelto::test {

/// Writes a film of `frames` frames; the name's ending says the kind. Without a codec named, one
/// that keeps all levels: FFV1 in Matroska.
inline std::string WriteVideo(const std::string& path, const host::FilmFormat& format,
                              int32_t frames, const std::function<EffectFrame(int)>& frame,
                              const std::string& codec = "ffv1", const std::string& audio = "") {
  const host::FilmKind& kind = host::KindFor(path, "");
  const host::FilmRequest request{path, format, frames, codec, audio};
  host::CheckRequest(kind, request);
  const auto film = kind.open(request);
  for (int i = 0; i < frames; ++i) film->Write(frame(i).View());
  film->Finish();
  return path;
}

/// A frame of one grey.
inline EffectFrame GreyFrame(host::FrameSize size, int level) {
  return MakeYCbYCr(size, [=](int, int) {
    return Rgb{uint8_t(level), uint8_t(level), uint8_t(level)};
  });
}

/// Runs the ffmpeg program with these words, which the shell splits. Fails the test when it fails.
void RunFfmpeg(const std::string& words);

}  // namespace kelto::test
