#include "host/film/sound_source.h"

#include <cmath>

#include "host/base/error.h"

namespace kelto::host {

SoundSource::SoundSource(const std::string& path) : path_(path), file_(OpenMedia(path, "sound")) {
  stream_ = SoundStreamOf(*file_);
  if (stream_ < 0) throw Error(path + ": has no sound");
  CheckStream(Stream(), path);
  start_ = std::llround(StartOf(*file_) / av_q2d(Stream().time_base));
  next_ = start_;
  for (unsigned i = 0; i < file_->nb_streams; ++i) {
    if (static_cast<int>(i) != stream_) file_->streams[i]->discard = AVDISCARD_ALL;
  }
}

double SoundSource::Seconds() const {
  if (file_->duration == AV_NOPTS_VALUE) return 0.0;
  return static_cast<double>(file_->duration) / AV_TIME_BASE;
}

bool SoundSource::Read(AVPacket& packet) {
  for (;;) {
    av_packet_unref(&packet);
    const int code = av_read_frame(file_.get(), &packet);
    if (code == AVERROR_EOF) return false;
    if (code < 0) throw Error(path_ + ": its sound cannot be read: " + LibavText(code));
    if (packet.stream_index != stream_) continue;
    if (packet.pts == AV_NOPTS_VALUE) packet.pts = next_;
    next_ = packet.pts + packet.duration;
    packet.pts -= start_;
    packet.dts = packet.pts;  // sound is stored in the order in which it is heard
    return true;
  }
}

void SoundSource::Describe(AVCodecParameters& sound) const {
  if (avcodec_parameters_copy(&sound, Stream().codecpar) < 0) throw std::bad_alloc();
  sound.codec_tag = 0;  // tags are the old container's
}

}  // namespace kelto::host
