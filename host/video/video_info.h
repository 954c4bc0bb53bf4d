// What a video file is.
#pragma once

#include <cstdint>
#include <string>

#include "host/base/film_format.h"

namespace kelto::host {

struct VideoInfo {
  FrameSize size;  ///< as shown: turned the way the file asks for
  SampleAspect sampleAspect;
  FrameRate rate;  ///< mean, when frames come at irregular times
  FieldOrder fields = FieldOrder::kProgressive;
  double seconds = 0.0;  ///< of the pictures, the last one's own time included
  int32_t frames = 1;    ///< whole frames at `rate` in that time
  bool sound = false;
  /// The curve of high dynamic range that its levels follow, which nothing here converts.
  enum class HighRange { kNone, kPq, kHlg } highRange = HighRange::kNone;
};

/// Opens a video as far as that. Throws Error when there is no such video, or when the file ends
/// before it should.
VideoInfo LookAtVideo(const std::string& path);

}  // namespace kelto::host
