#include "host/film/sound_track.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/film/sound_encoder.h"
#include "host/film/sound_source.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

AVStream& AddStream(AVFormatContext& container) {
  AVStream* stream = avformat_new_stream(&container, nullptr);
  if (stream == nullptr) throw std::bad_alloc();
  return *stream;
}

bool IsMatroska(const std::string& kind) { return kind == "mkv" || kind == "webm"; }

class Track : public SoundTrack {
 public:
  Track(const SoundRequest& request, AVFormatContext& container,
        std::unique_ptr<SoundPackets> packets)
      : request_(request),
        container_(container),
        packets_(std::move(packets)),
        timeBase_(packets_->TimeBase()),
        end_(av_rescale_q(request.frames, request.frameTime, timeBase_)),
        stream_(AddStream(container)),
        packet_(Own(av_packet_alloc())) {
    packets_->Describe(*stream_.codecpar);
    stream_.time_base = timeBase_;
    const AVCodecParameters& sound = *stream_.codecpar;
    mayStartEarly_ = request.editList;
    if (sound.codec_id == AV_CODEC_ID_OPUS && IsMatroska(request.kind)) {
      // Matroska notes beside the stream how much of Opus is not heard; its times count that too.
      mayStartEarly_ = true;
      delay_ = av_rescale_q(sound.initial_padding, {1, sound.sample_rate}, timeBase_);
    }
    more_ = packets_->Read(*packet_);
  }

  void WriteUntil(int64_t frame) override {
    while (more_ && av_compare_ts(packet_->pts, timeBase_, frame, request_.frameTime) < 0) {
      heardUntil_ = std::max(heardUntil_, packet_->pts + packet_->duration);
      if (Belongs(*packet_)) Write(*packet_);
      more_ = packets_->Read(*packet_);
    }
    if (!more_ && !std::exchange(overTold_, true)) WarnOfEarlyEnd();
  }

 private:
  void WarnOfEarlyEnd() const {
    const double seconds = static_cast<double>(heardUntil_) * av_q2d(timeBase_);
    const double film = static_cast<double>(request_.frames) * av_q2d(request_.frameTime);
    // Packets are of many lengths, and not all files say which.
    if (seconds + av_q2d(request_.frameTime) + 0.1 >= film) return;
    Warn(request_.file + ": its sound ends after " + FixedText(seconds, 2) + " of the film's " +
         FixedText(film, 2) + " seconds; the rest is silent");
  }

  bool Belongs(const AVPacket& packet) const {
    if (packet.pts + delay_ >= end_) return false;
    if (packet.pts >= 0) return true;
    // What a decoder needs before time 0 is a few packets, not minutes.
    return mayStartEarly_ && packet.pts + 4 * packet.duration >= 0;
  }

  void Write(AVPacket& packet) {
    packet.pts += delay_;
    packet.dts = packet.pts;
    CutAtEnd(packet);
    packet.stream_index = stream_.index;
    packet.pos = -1;
    av_packet_rescale_ts(&packet, timeBase_, stream_.time_base);
    const int code = av_interleaved_write_frame(&container_, &packet);
    if (code < 0) throw Error(request_.file + ": its sound cannot be written: " + LibavText(code));
  }

  /// Coded sound cannot be cut within a packet, but its time can; plain samples can be cut.
  void CutAtEnd(AVPacket& packet) const {
    if (packet.duration <= end_ - packet.pts) return;
    packet.duration = end_ - packet.pts;
    const AVCodecParameters& sound = *stream_.codecpar;
    if (av_get_exact_bits_per_sample(sound.codec_id) == 0 || sound.block_align == 0) return;
    const int64_t samples = av_rescale_q(packet.duration, timeBase_, {1, sound.sample_rate});
    av_shrink_packet(&packet, static_cast<int>(samples * sound.block_align));
  }

  SoundRequest request_;
  AVFormatContext& container_;
  std::unique_ptr<SoundPackets> packets_;
  AVRational timeBase_;
  int64_t end_;  ///< of the film, in units of timeBase_
  AVStream& stream_;
  Owned<AVPacket> packet_;
  bool mayStartEarly_ = false;
  int64_t delay_ = 0;  ///< added to times as written
  bool more_ = false;
  int64_t heardUntil_ = 0;  ///< in units of timeBase_
  bool overTold_ = false;   ///< whether the sound's end has been seen to
};

/// Coded sound that players take from MP4 and QuickTime files. The library says yes to more: to
/// what it then refuses to write, and to what hardly anything plays from there.
constexpr AVCodecID kInMp4[] = {AV_CODEC_ID_AAC, AV_CODEC_ID_MP3, AV_CODEC_ID_AC3, AV_CODEC_ID_EAC3,
                                AV_CODEC_ID_ALAC};

bool CanCopy(const std::string& kind, const AVFormatContext& container,
             const AVCodecParameters& sound) {
  // AAC without its description is the form of broadcasts; containers want the other one.
  if (sound.codec_id == AV_CODEC_ID_AAC && sound.extradata_size == 0) return false;
  const bool listed =
      av_get_exact_bits_per_sample(sound.codec_id) != 0 ||
      std::find(std::begin(kInMp4), std::end(kInMp4), sound.codec_id) != std::end(kInMp4) ||
      (kind == "mp4" && sound.codec_id == AV_CODEC_ID_OPUS);
  if ((kind == "mp4" || kind == "mov") && !listed) return false;
  return avformat_query_codec(container.oformat, sound.codec_id, FF_COMPLIANCE_NORMAL) == 1;
}

/// Says of sound that is cut in its midst, where nobody asked for a fade.
void TellIfLonger(const SoundRequest& request, const SoundSource& source) {
  constexpr double kNoMatter = 0.5;
  const double film = static_cast<double>(request.frames) * av_q2d(request.frameTime);
  if (request.fade > 0.0 || source.Seconds() < film + kNoMatter) return;
  char text[80];
  std::snprintf(text, sizeof text, ": its sound is cut after %.2f of %.2f seconds", film,
                source.Seconds());
  PrintMessage(request.file + text + "; --audio-fade 2 fades it out");
}

}  // namespace

std::unique_ptr<SoundPackets> OpenSound(const SoundRequest& request,
                                        const AVFormatContext& container) {
  auto source = std::make_unique<SoundSource>(request.file);
  TellIfLonger(request, *source);
  // What is faded or joined has to be decoded.
  const bool asItIs = !request.repeat && request.fade == 0.0;
  if (asItIs && CanCopy(request.kind, container, *source->Stream().codecpar)) return source;
  return std::make_unique<SoundEncoder>(
      std::move(source), request.kind == "webm" ? "libopus" : "aac",
      (container.oformat->flags & AVFMT_GLOBALHEADER) != 0,
      SoundLength{request.frames, request.frameTime, request.repeat, request.fade});
}

std::unique_ptr<SoundTrack> AddSoundTrack(const SoundRequest& request, AVFormatContext& container,
                                          std::unique_ptr<SoundPackets> packets) {
  return std::make_unique<Track>(request, container, std::move(packets));
}

}  // namespace kelto::host
