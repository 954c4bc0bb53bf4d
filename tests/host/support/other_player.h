// Films decoded without the FFmpeg libraries: GStreamer, with the decoders of OpenH264, libde265,
// libvpx and libaom.
#pragma once

#include <string>
#include <vector>

#include "tests/host/support/film_reader.h"

namespace kelto::test {

struct PlayedFilm {
  std::string caps;                  ///< of the decoded frames: size, rate, colorimetry ...
  std::vector<DecodedFrame> frames;  ///< 8-bit 4:2:0, times counted from the first one
  double seconds = 0.0;              ///< from the first frame's beginning to the last one's end
  /// The value of a field of the caps; empty when they have none such.
  std::string Field(const std::string& name) const;
};

/// Plays a film of `codec` ("h264", "hevc", "vp9" or "av1") in a file of the MP4 family or
/// Matroska's. The width must be a multiple of 8. Fails the test when it does not play.
PlayedFilm PlayElsewhere(const std::string& path, const std::string& codec, int width, int height);

}  // namespace kelto::test
