// The sound of a file, read in order.
#pragma once

#include <cstdint>
#include <string>

#include "host/film/media_file.h"
#include "host/film/sound_packets.h"

namespace kelto::host {

/// The stream of sound that players would choose. Times count from where the file's pictures begin,
/// or its sound when it has none.
class SoundSource : public SoundPackets {
 public:
  /// Throws Error when the file has no sound.
  explicit SoundSource(const std::string& path);

  const std::string& Path() const { return path_; }
  const AVStream& Stream() const { return *file_->streams[stream_]; }
  /// The file's length by its own account; 0 where it does not say.
  double Seconds() const;
  bool Read(AVPacket& packet) override;
  AVRational TimeBase() const override { return Stream().time_base; }
  void Describe(AVCodecParameters& sound) const override;

 private:
  std::string path_;
  MediaFile file_;
  int stream_ = -1;
  int64_t start_ = 0;  ///< time 0, in the stream's time base
  int64_t next_ = 0;   ///< where a packet without a time belongs
};

}  // namespace kelto::host
