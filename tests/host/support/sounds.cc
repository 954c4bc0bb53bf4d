#include "tests/host/support/sounds.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>

namespace kelto::test {
namespace {

double SampleOf(const AVFrame& frame, int index) {
  const uint8_t* bytes = frame.extended_data[0];
  const int step = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(frame.format)) != 0
                       ? 1
                       : frame.ch_layout.nb_channels;
  switch (frame.format) {
    case AV_SAMPLE_FMT_FLT:
    case AV_SAMPLE_FMT_FLTP:
      return reinterpret_cast<const float*>(bytes)[index * step];
    case AV_SAMPLE_FMT_S16:
    case AV_SAMPLE_FMT_S16P:
      return reinterpret_cast<const int16_t*>(bytes)[index * step] / 32768.0;
    default:
      ADD_FAILURE() << "samples of the form " << frame.format;
      return 0.0;
  }
}

}  // namespace

void WriteWav(const std::string& path, double seconds, int rate, int channels,
              const SoundFunction& sound) {
  const auto frames = static_cast<uint32_t>(std::lround(seconds * rate));
  const uint32_t bytes = frames * channels * 2;
  std::vector<uint8_t> file(44 + bytes);
  const auto put = [&](size_t at, uint32_t value, int size) {
    for (int i = 0; i < size; ++i) file[at + i] = static_cast<uint8_t>(value >> (8 * i));
  };
  std::copy_n("RIFF", 4, file.begin());
  put(4, 36 + bytes, 4);
  std::copy_n("WAVEfmt ", 8, file.begin() + 8);
  put(16, 16, 4);
  put(20, 1, 2);
  put(22, channels, 2);
  put(24, rate, 4);
  put(28, rate * channels * 2, 4);
  put(32, channels * 2, 2);
  put(34, 16, 2);
  std::copy_n("data", 4, file.begin() + 36);
  put(40, bytes, 4);
  for (uint32_t i = 0; i < frames; ++i) {
    for (int channel = 0; channel < channels; ++channel) {
      const double level = sound(channel, static_cast<double>(i) / rate);
      put(44 + 2 * (size_t{i} * channels + channel),
          static_cast<uint16_t>(static_cast<int16_t>(std::lround(32767.0 * level))), 2);
    }
  }
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
}

SoundFunction Clicks(const std::vector<double>& times, int rate) {
  return [=](int, double seconds) {
    const bool click = std::any_of(times.begin(), times.end(), [&](double time) {
      return std::abs(seconds - time) < 0.5 / rate;
    });
    return click ? 1.0 : 0.0;
  };
}

double DecodedSound::LoudestBetween(double from, double to) const {
  const auto index = [&](double seconds) {
    return std::clamp<ptrdiff_t>(std::lround((seconds - start) * rate), 0,
                                 static_cast<ptrdiff_t>(samples.size()));
  };
  const auto loudest =
      std::max_element(samples.begin() + index(from), samples.begin() + index(to),
                       [](double a, double b) { return std::abs(a) < std::abs(b); });
  return start + static_cast<double>(loudest - samples.begin()) / rate;
}

double DecodedSound::LevelAt(double seconds) const {
  const auto index = static_cast<size_t>(std::lround((seconds - start) * rate));
  return index < samples.size() ? samples[index] : 0.0;
}

DecodedSound ReadSound(const std::string& path) {
  DecodedSound sound;
  AVFormatContext* file = nullptr;
  const std::string url = "file:" + path;
  if (avformat_open_input(&file, url.c_str(), nullptr, nullptr) < 0) {
    ADD_FAILURE() << path << " cannot be opened";
    return sound;
  }
  avformat_find_stream_info(file, nullptr);
  const int index = av_find_best_stream(file, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
  if (index < 0) {
    ADD_FAILURE() << path << " has no sound";
    avformat_close_input(&file);
    return sound;
  }
  const AVStream& stream = *file->streams[index];
  const AVCodec* decoder = avcodec_find_decoder(stream.codecpar->codec_id);
  AVCodecContext* codec = avcodec_alloc_context3(decoder);
  avcodec_parameters_to_context(codec, stream.codecpar);
  codec->pkt_timebase = stream.time_base;
  EXPECT_EQ(avcodec_open2(codec, decoder, nullptr), 0);
  sound.codec = avcodec_get_name(stream.codecpar->codec_id);
  sound.rate = codec->sample_rate;
  sound.channels = codec->ch_layout.nb_channels;
  AVFrame* frame = av_frame_alloc();
  AVPacket* packet = av_packet_alloc();
  for (bool more = true; more;) {
    more = av_read_frame(file, packet) >= 0;
    if (more && packet->stream_index != index) {
      av_packet_unref(packet);
      continue;
    }
    if (more) {
      sound.end = std::max(sound.end, static_cast<double>(packet->pts + packet->duration) *
                                          av_q2d(stream.time_base));
    }
    avcodec_send_packet(codec, more ? packet : nullptr);
    av_packet_unref(packet);
    while (avcodec_receive_frame(codec, frame) >= 0) {
      if (sound.samples.empty()) {
        sound.start = static_cast<double>(frame->pts) * av_q2d(stream.time_base);
      }
      for (int i = 0; i < frame->nb_samples; ++i) sound.samples.push_back(SampleOf(*frame, i));
    }
  }
  av_packet_free(&packet);
  av_frame_free(&frame);
  avcodec_free_context(&codec);
  avformat_close_input(&file);
  return sound;
}

}  // namespace kelto::test
