// Decoded pictures in the form of the effect's frames.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "host/base/film_format.h"
#include "host/film/libav.h"
#include "host/video/orientation.h"
#include "host/video/scaler.h"
#include "host/video/video_info.h"

namespace kelto::host {

/// Where a video's shape differs from the film's: all of it, with black beside it, or so much of
/// its middle that nothing stays empty.
enum class VideoFit { kWhole, kFill };

/// A frame that is being filled.
struct MutableFrame {
  uint8_t* pixels = nullptr;
  ptrdiff_t rowBytes = 0;
  FrameSize size;
};

/// Scales, turns and recodes pictures.
class FrameConverter {
 public:
  /// `info` and `turn` are the video's; `path` is for messages.
  FrameConverter(const std::string& path, const VideoInfo& info, const Orientation& turn,
                 const FilmFormat& film, PixelLayout layout, VideoFit fit);

  /// Fills `to`, which is of the film's size, or one of its fields, with the rows `part` of the
  /// picture. Throws Error.
  void Convert(const AVFrame& picture, PicturePart part, const MutableFrame& to);

 private:
  /// A rectangle of the film's frame, or of the picture.
  struct Area {
    int32_t left = 0, top = 0, width = 0, height = 0;
  };

  void PlaceWhole(double shape);
  void CropToFill(double shape);
  Owned<AVFrame> Cut(const AVFrame& picture, PicturePart part) const;
  const AVFrame& Turned(const AVFrame& scaled);
  AVPixelFormat ScaledFormat(const AVFrame& picture) const;
  /// Hands on what was scaled of `picture`.
  void Pack(const AVFrame& scaled, const AVFrame& picture, const MutableFrame& to) const;
  void FillBlack(const MutableFrame& to) const;

  std::string path_;
  Orientation turn_;
  PixelLayout layout_;
  bool interlaced_;
  FrameSize film_, stored_;
  Area target_;  ///< of the frame, where the picture goes
  Area source_;  ///< of the picture as stored, of what is shown
  Scaler scaler_, turnedScaler_;
  Owned<AVFrame> turned_;
};

}  // namespace kelto::host
