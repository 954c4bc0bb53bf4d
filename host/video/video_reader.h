// A video as the frames that a film is laid over.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/video/frame_converter.h"
#include "host/video/video_file.h"

namespace kelto::host {

/// Frames of a film, made of a video's: frame N shows what the video shows at the time of N, from
/// its first picture on, whatever the rates of the two; after its end the video's last picture
/// stays. Interlaced films take each field at its own time, from the same field of an interlaced
/// video; in a film of whole frames an interlaced video shows its first fields. Operations throw
/// Error that names the file.
class VideoReader {
 public:
  VideoReader(const std::string& path, const FilmFormat& film, PixelLayout layout,
              VideoFit fit = VideoFit::kWhole);

  const VideoInfo& Info() const { return file_.Info(); }

  /// Frame `number`, 0-based, in the film's size and the layout asked for: Y Cb Y Cr as the effect
  /// scales it (colour_matrix.h), full-range BGRA, or full-range words with all bits that the video
  /// has; opaque. Going on by one is fast; any other
  /// frame may be asked for. The view holds until the next call.
  FrameView Frame(int32_t number);

 private:
  void FillField(double seconds, bool top);

  VideoFile file_;
  FilmFormat film_;
  PixelLayout layout_;
  FrameConverter converter_;
  std::vector<uint8_t> pixels_, whole_;
};

}  // namespace kelto::host
