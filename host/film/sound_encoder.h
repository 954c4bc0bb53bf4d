// Sound in another codec than it came in.
#pragma once

extern "C" {
#include <libavutil/audio_fifo.h>
#include <libswresample/swresample.h>
}

#include <cstdint>
#include <memory>
#include <string>

#include "host/film/sound_packets.h"
#include "host/film/sound_source.h"

namespace kelto::host {

/// How long sound is to be, and how it gets there.
struct SoundLength {
  int64_t length = 0;  ///< where it is cut, in units of `unit` seconds
  AVRational unit{};
  bool repeat = false;  ///< whether it begins again where it ends before that
  double fade = 0.0;    ///< seconds before that in which it fades out
};

/// Decodes a source's sound and codes it anew, mono or stereo (more channels are mixed into two),
/// at the source's rate where the encoder takes it, else at 48 kHz. Where the source has a hole,
/// there is silence.
class SoundEncoder : public SoundPackets {
 public:
  /// `encoder` is FFmpeg's name; `globalHeader` as the container wants it. Throws Error.
  SoundEncoder(std::unique_ptr<SoundSource> source, const std::string& encoder, bool globalHeader,
               const SoundLength& length);

  bool Read(AVPacket& packet) override;
  AVRational TimeBase() const override { return codec_->time_base; }
  void Describe(AVCodecParameters& sound) const override;

 private:
  struct FreeSound {
    void operator()(SwrContext* context) const { swr_free(&context); }
    void operator()(AVAudioFifo* fifo) const { av_audio_fifo_free(fifo); }
  };

  void OpenEncoder(const std::string& name, bool globalHeader);
  bool FitsResampler(const AVFrame& frame) const;
  void OpenResampler(const AVFrame& frame);
  void Check(int code, const char* doing) const;
  /// Puts more samples into the queue; false at the end of the source.
  bool FillQueue();
  /// Begins the source again; false where that is not asked for, or gives no sound.
  bool Repeat();
  /// Fades samples that go to the encoder from sample `fed_` on.
  void Fade(AVFrame& frame) const;
  /// Decodes a frame; false at the end of the source.
  bool Decode();
  /// Samples missing between what is queued and the frame decoded; negative when it is early.
  int64_t HoleBefore(const AVFrame& frame) const;
  /// Resamples a frame into the queue; null: what the resampler still holds.
  void Queue(const AVFrame* frame);
  void QueueSilence();
  /// Hands the encoder one frame of its size, the last one shorter; false when there is none.
  bool Feed();
  Owned<AVFrame> MakeFrame(int samples) const;

  std::unique_ptr<SoundSource> source_;
  Owned<AVCodecContext> decoder_, codec_;
  Owned<AVFrame> decoded_;
  Owned<AVPacket> read_;
  std::unique_ptr<SwrContext, FreeSound> resampler_;
  int format_ = 0, rate_ = 0, channels_ = 0;  ///< that the resampler was opened for
  std::unique_ptr<AVAudioFifo, FreeSound> queue_;
  bool repeat_ = false;
  int64_t end_ = 0;      ///< samples of sound at the most
  int64_t fade_ = 0;     ///< of them, those at the end that fade
  int64_t begin_ = 0;    ///< samples before the source began the last time
  int64_t queued_ = 0;   ///< samples that have gone into the queue: the time of the next one
  int64_t fed_ = 0;      ///< samples that have gone into the encoder
  int64_t silence_ = 0;  ///< samples of silence to queue before the frame decoded
  int64_t early_ = 0;    ///< samples to drop, since they sound before the film
  bool holdsFrame_ = false, begun_ = false, sourceEnded_ = false, drained_ = false;
  bool damageTold_ = false;
};

}  // namespace kelto::host
