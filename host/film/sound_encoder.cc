#include "host/film/sound_encoder.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "host/base/error.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

constexpr int kUsualRate = 48000;
constexpr int kBitsPerChannel = 96000;
/// Samples of encoders that take any number at a time.
constexpr int kFrameSamples = 1024;

int RateFor(const AVCodec& encoder, int rate) {
  // Opus counts in 48 kHz, whatever comes in.
  if (encoder.id == AV_CODEC_ID_OPUS) return kUsualRate;
  if (encoder.supported_samplerates == nullptr) return rate;
  for (const int* each = encoder.supported_samplerates; *each != 0; ++each) {
    if (*each == rate) return rate;
  }
  return kUsualRate;
}

}  // namespace

SoundEncoder::SoundEncoder(std::unique_ptr<SoundSource> source, const std::string& encoder,
                           bool globalHeader, const SoundLength& length)
    : source_(std::move(source)),
      decoder_(OpenDecoder(source_->Stream(), source_->Path())),
      decoded_(Own(av_frame_alloc())),
      read_(Own(av_packet_alloc())) {
  OpenEncoder(encoder, globalHeader);
  queue_.reset(
      av_audio_fifo_alloc(codec_->sample_fmt, codec_->ch_layout.nb_channels, codec_->sample_rate));
  if (!queue_) throw std::bad_alloc();
  end_ = av_rescale_q(length.length, length.unit, codec_->time_base);
  repeat_ = length.repeat;
  fade_ = std::min(end_, static_cast<int64_t>(length.fade * codec_->sample_rate));
}

void SoundEncoder::Check(int code, const char* doing) const {
  if (code < 0) {
    throw Error(source_->Path() + ": its sound cannot be " + doing + ": " + LibavText(code));
  }
}

void SoundEncoder::OpenEncoder(const std::string& name, bool globalHeader) {
  const AVCodec* encoder = avcodec_find_encoder_by_name(name.c_str());
  if (encoder == nullptr) {
    throw Error(source_->Path() +
                ": its sound has to be coded anew, and the installed FFmpeg has no " + name);
  }
  codec_ = Own(avcodec_alloc_context3(encoder));
  const int channels = std::min(decoder_->ch_layout.nb_channels, 2);
  av_channel_layout_default(&codec_->ch_layout, channels);
  codec_->sample_rate = RateFor(*encoder, decoder_->sample_rate);
  codec_->sample_fmt = encoder->sample_fmts[0];
  codec_->bit_rate = int64_t{kBitsPerChannel} * channels;
  codec_->time_base = {1, codec_->sample_rate};
  codec_->flags |= AV_CODEC_FLAG_BITEXACT;
  if (globalHeader) codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  Check(avcodec_open2(codec_.get(), encoder, nullptr), "coded");
}

void SoundEncoder::Describe(AVCodecParameters& sound) const {
  if (avcodec_parameters_from_context(&sound, codec_.get()) < 0) throw std::bad_alloc();
}

bool SoundEncoder::Read(AVPacket& packet) {
  for (;;) {
    const int code = avcodec_receive_packet(codec_.get(), &packet);
    if (code >= 0) return true;
    if (code == AVERROR_EOF) return false;
    if (code != AVERROR(EAGAIN)) Check(code, "coded");
    if (Feed()) continue;
    if (FillQueue()) continue;
    if (drained_) return false;
    drained_ = true;
    Check(avcodec_send_frame(codec_.get(), nullptr), "coded");
  }
}

bool SoundEncoder::Feed() {
  const int whole = codec_->frame_size > 0 ? codec_->frame_size : kFrameSamples;
  const int ready = av_audio_fifo_size(queue_.get());
  const int64_t wanted = std::min<int64_t>(whole, end_ - fed_);
  if (drained_ || ready == 0 || wanted <= 0 || (ready < wanted && !sourceEnded_)) return false;
  const int samples = static_cast<int>(std::min<int64_t>(ready, wanted));
  const auto frame = MakeFrame(samples);
  av_audio_fifo_read(queue_.get(), reinterpret_cast<void**>(frame->extended_data), samples);
  frame->pts = fed_;
  Fade(*frame);
  fed_ += samples;
  Check(avcodec_send_frame(codec_.get(), frame.get()), "coded");
  return true;
}

bool SoundEncoder::FillQueue() {
  if (sourceEnded_ || fed_ >= end_) return false;
  if (!holdsFrame_ && !Decode()) {
    if (resampler_) Queue(nullptr);
    sourceEnded_ = !Repeat();
    return true;
  }
  if (!holdsFrame_) {
    holdsFrame_ = true;
    const int64_t hole = HoleBefore(*decoded_);
    silence_ = std::max<int64_t>(hole, 0);
    if (!begun_) early_ = std::max<int64_t>(-hole, 0);
    begun_ = true;
  }
  if (silence_ > 0) {
    QueueSilence();
  } else {
    Queue(decoded_.get());
    holdsFrame_ = false;
  }
  return true;
}

bool SoundEncoder::Repeat() {
  if (!repeat_ || queued_ <= begin_) return false;
  const std::string path = source_->Path();
  source_ = std::make_unique<SoundSource>(path);
  decoder_ = OpenDecoder(source_->Stream(), path);
  resampler_.reset();
  begin_ = queued_;
  begun_ = false;
  return true;
}

void SoundEncoder::Fade(AVFrame& frame) const {
  if (fade_ == 0 || fed_ + frame.nb_samples <= end_ - fade_) return;
  const auto format = static_cast<AVSampleFormat>(frame.format);
  const bool planar = av_sample_fmt_is_planar(format) != 0;
  const int channels = frame.ch_layout.nb_channels;
  // Of a plane, in which `step` samples sound at a time.
  const auto scale = [&](auto* samples, int step) {
    using Sample = std::remove_pointer_t<decltype(samples)>;
    for (int i = 0; i < frame.nb_samples; ++i) {
      const int64_t left = end_ - (fed_ + i);
      if (left >= fade_) continue;
      const double gain = static_cast<double>(left) / static_cast<double>(fade_);
      for (int k = 0; k < step; ++k) {
        Sample& sample = samples[i * step + k];
        sample = static_cast<Sample>(sample * gain);
      }
    }
  };
  for (int plane = 0; plane < (planar ? channels : 1); ++plane) {
    const int step = planar ? 1 : channels;
    if (av_get_packed_sample_fmt(format) == AV_SAMPLE_FMT_FLT) {
      scale(reinterpret_cast<float*>(frame.extended_data[plane]), step);
    } else if (av_get_packed_sample_fmt(format) == AV_SAMPLE_FMT_S16) {
      scale(reinterpret_cast<int16_t*>(frame.extended_data[plane]), step);
    } else {
      throw Error(source_->Path() + ": its sound cannot be faded for this codec");
    }
  }
}

bool SoundEncoder::Decode() {
  for (;;) {
    int code = avcodec_receive_frame(decoder_.get(), decoded_.get());
    if (code >= 0) return true;
    if (code == AVERROR_EOF) return false;
    const bool more = source_->Read(*read_);
    // Damaged packets are passed over, as players do.
    code = avcodec_send_packet(decoder_.get(), more ? read_.get() : nullptr);
    if (code == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (more && code < 0 && code != AVERROR(EAGAIN) && !std::exchange(damageTold_, true)) {
      Warn(source_->Path() + ": some of its sound is damaged and is left out");
    }
  }
}

int64_t SoundEncoder::HoleBefore(const AVFrame& frame) const {
  if (frame.pts == AV_NOPTS_VALUE) return 0;
  const int64_t held = resampler_ ? swr_get_delay(resampler_.get(), codec_->sample_rate) : 0;
  const int64_t hole =
      begin_ + av_rescale_q(frame.pts, source_->TimeBase(), codec_->time_base) - queued_ - held;
  // Files may round the times of packets to milliseconds.
  return begun_ && hole < codec_->sample_rate / 20 ? 0 : hole;
}

bool SoundEncoder::FitsResampler(const AVFrame& frame) const {
  return resampler_ && frame.format == format_ && frame.sample_rate == rate_ &&
         frame.ch_layout.nb_channels == channels_;
}

void SoundEncoder::OpenResampler(const AVFrame& frame) {
  AVChannelLayout layout{};
  // Files of plain samples may not say what their channels are.
  if (frame.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC) {
    av_channel_layout_default(&layout, frame.ch_layout.nb_channels);
  } else {
    Check(av_channel_layout_copy(&layout, &frame.ch_layout), "decoded");
  }
  SwrContext* context = nullptr;
  int code = swr_alloc_set_opts2(
      &context, &codec_->ch_layout, codec_->sample_fmt, codec_->sample_rate, &layout,
      static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
  av_channel_layout_uninit(&layout);
  resampler_.reset(context);
  if (code >= 0) code = swr_init(context);
  Check(code, "resampled");
  format_ = frame.format;
  rate_ = frame.sample_rate;
  channels_ = frame.ch_layout.nb_channels;
}

Owned<AVFrame> SoundEncoder::MakeFrame(int samples) const {
  auto frame = Own(av_frame_alloc());
  frame->format = codec_->sample_fmt;
  frame->sample_rate = codec_->sample_rate;
  frame->nb_samples = samples;
  Check(av_channel_layout_copy(&frame->ch_layout, &codec_->ch_layout), "coded");
  Check(av_frame_get_buffer(frame.get(), 0), "coded");
  return frame;
}

void SoundEncoder::Queue(const AVFrame* frame) {
  if (frame != nullptr && !FitsResampler(*frame)) OpenResampler(*frame);
  const int there = frame == nullptr ? 0 : frame->nb_samples;
  const int room = std::max(swr_get_out_samples(resampler_.get(), there), 1);
  const auto made = MakeFrame(room);
  const uint8_t** from =
      frame == nullptr ? nullptr : const_cast<const uint8_t**>(frame->extended_data);
  const int samples = swr_convert(resampler_.get(), made->extended_data, room, from, there);
  Check(samples, "resampled");
  const int dropped = static_cast<int>(std::min<int64_t>(early_, samples));
  early_ -= dropped;
  // av_audio_fifo_write has no place to begin at: the kept samples go to the front.
  if (dropped > 0) {
    av_samples_copy(made->extended_data, made->extended_data, 0, dropped, samples - dropped,
                    codec_->ch_layout.nb_channels, codec_->sample_fmt);
  }
  Check(av_audio_fifo_write(queue_.get(), reinterpret_cast<void**>(made->extended_data),
                            samples - dropped),
        "coded");
  queued_ += samples - dropped;
}

void SoundEncoder::QueueSilence() {
  const int samples = static_cast<int>(std::min<int64_t>(silence_, codec_->sample_rate));
  const auto frame = MakeFrame(samples);
  av_samples_set_silence(frame->extended_data, 0, samples, codec_->ch_layout.nb_channels,
                         codec_->sample_fmt);
  Check(av_audio_fifo_write(queue_.get(), reinterpret_cast<void**>(frame->extended_data), samples),
        "coded");
  queued_ += samples;
  silence_ -= samples;
}

}  // namespace kelto::host
