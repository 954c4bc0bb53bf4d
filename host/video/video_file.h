// A video's pictures, decoded in order.
#pragma once

#include <cstdint>
#include <string>

#include "host/film/media_file.h"
#include "host/video/orientation.h"
#include "host/video/video_info.h"

namespace kelto::host {

/// Gives the picture shown at a time. Times are seconds from the first picture. Throws Error that
/// names the file.
class VideoFile {
 public:
  explicit VideoFile(const std::string& path);

  const VideoInfo& Info() const { return info_; }
  /// How the decoded pictures have to be turned.
  const Orientation& Turn() const { return turn_; }

  /// The picture shown at `seconds`: the last one that begins no later. Before the first picture it
  /// is the first, after the last one the last. The frame holds until the next call.
  const AVFrame& At(double seconds);

 private:
  AVStream& Stream() const { return *file_->streams[stream_]; }
  void Open();
  static VideoInfo::HighRange HighRangeOf(int transfer);
  void Describe();
  void DescribeRate();
  void DescribeTurn();
  /// Where packets end that stand near the end of the file, in seconds of its clock; below 0 when
  /// there are none. Not `timed`, pictures without times were counted.
  struct Ends {
    double pictures = -1.0, all = -1.0;
    bool timed = true;
  };
  Ends FindEnds();
  /// The same from where the file is being read on.
  Ends ReadEnds();
  /// For how many seconds the decoder keeps a picture that others go before.
  double HeldBack() const;
  void CheckWhole(const Ends& ends) const;
  void DescribeLength(const Ends& ends);
  bool NearerPlaceFor(double seconds) const;
  /// Shows a picture that begins at `seconds` or earlier.
  void SeekTo(double seconds);
  /// Finds a place before `seconds` to begin at, and decodes its first whole picture. False when
  /// there is none, or when that picture begins later than `latest`.
  bool SeekNear(double seconds, double latest);
  bool TimesAreSparse() const;
  /// Begins anew with the first picture, decoded.
  void Rewind();
  /// Nothing is decoded yet.
  void Forget();
  /// Decodes the next picture into `next_`; false at the end.
  bool Decode();
  void Advance();
  double SecondsOf(const AVFrame& frame) const;

  std::string path_;
  MediaFile file_;
  int stream_ = -1;
  Owned<AVCodecContext> decoder_;
  Owned<AVPacket> packet_;
  VideoInfo info_;
  Orientation turn_;
  double start_ = 0.0;      ///< seconds of the first picture by the file's clock
  double tolerance_ = 0.0;  ///< by which times in the file may be rounded
  double firstAt_ = 0.0;    ///< of the first picture that can be decoded
  bool hasPlaces_ = true;   ///< to begin at, besides the first picture
  Owned<AVFrame> shown_, next_;
  double shownAt_ = 0.0, nextAt_ = 0.0;
  bool hasShown_ = false, hasNext_ = false;
  bool drained_ = false;  ///< the decoder knows that no more packets come
};

}  // namespace kelto::host
