#include "tests/host/support/film_reader.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>

namespace kelto::test {
namespace {

void Copy(const AVFrame& from, DecodedFrame& to) {
  const AVPixFmtDescriptor* form = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(from.format));
  to.width = from.width;
  to.height = from.height;
  to.chromaWidth = AV_CEIL_RSHIFT(from.width, form->log2_chroma_w);
  to.chromaHeight = AV_CEIL_RSHIFT(from.height, form->log2_chroma_h);
  for (int plane = 0; plane < 3; ++plane) {
    const int width = plane == 0 ? to.width : to.chromaWidth;
    const int height = plane == 0 ? to.height : to.chromaHeight;
    // Red, green and blue may lie in one plane, pixel by pixel.
    const AVComponentDescriptor& part = form->comp[plane];
    for (int row = 0; row < height; ++row) {
      const uint8_t* start =
          from.data[part.plane] + ptrdiff_t{row} * from.linesize[part.plane] + part.offset;
      if (part.depth == 8) {
        for (int x = 0; x < width; ++x) to.planes[plane].push_back(start[x * part.step]);
        continue;
      }
      // Ten bits, to the nearest level of eight.
      const auto* deep = reinterpret_cast<const uint16_t*>(start);
      for (int x = 0; x < width; ++x) {
        to.planes[plane].push_back(static_cast<uint8_t>(std::min((deep[x] + 2) / 4, 255)));
      }
    }
  }
  to.interlaced = from.interlaced_frame != 0;
  to.topFirst = from.top_field_first != 0;
}

void Describe(const AVFormatContext& container, const AVStream& stream, DecodedFilm& film) {
  const AVCodecParameters& codec = *stream.codecpar;
  film.container = container.iformat->name;
  film.codec = avcodec_get_name(codec.codec_id);
  film.pixelFormat = av_get_pix_fmt_name(static_cast<AVPixelFormat>(codec.format));
  film.rate = stream.avg_frame_rate;
  film.sampleAspect =
      stream.sample_aspect_ratio.num != 0 ? stream.sample_aspect_ratio : codec.sample_aspect_ratio;
  film.matrix = codec.color_space;
  film.primaries = codec.color_primaries;
  film.transfer = codec.color_trc;
  film.range = codec.color_range;
  film.fields = codec.field_order;
  film.streams = static_cast<int>(container.nb_streams);
  film.seconds = static_cast<double>(container.duration) / AV_TIME_BASE;
}

uint8_t ToByte(double value) {
  return static_cast<uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

}  // namespace

DecodedFilm ReadFilm(const std::string& path) {
  DecodedFilm film;
  AVFormatContext* container = nullptr;
  const std::string url = "file:" + path;
  if (avformat_open_input(&container, url.c_str(), nullptr, nullptr) < 0 ||
      avformat_find_stream_info(container, nullptr) < 0 || container->nb_streams < 1 ||
      container->streams[0]->codecpar->codec_type != AVMEDIA_TYPE_VIDEO) {
    ADD_FAILURE() << path << " is no film";
    avformat_close_input(&container);
    return film;
  }
  AVStream* stream = container->streams[0];
  Describe(*container, *stream, film);
  const AVCodec* decoder = avcodec_find_decoder(stream->codecpar->codec_id);
  AVCodecContext* codec = avcodec_alloc_context3(decoder);
  avcodec_parameters_to_context(codec, stream->codecpar);
  EXPECT_EQ(avcodec_open2(codec, decoder, nullptr), 0);
  AVFrame* frame = av_frame_alloc();
  AVPacket* packet = av_packet_alloc();
  for (bool more = true; more;) {
    more = av_read_frame(container, packet) >= 0;
    if (more && packet->stream_index != 0) {
      av_packet_unref(packet);
      continue;
    }
    EXPECT_GE(avcodec_send_packet(codec, more ? packet : nullptr), 0) << path;
    av_packet_unref(packet);
    while (avcodec_receive_frame(codec, frame) >= 0) {
      Copy(*frame, film.frames.emplace_back());
      film.frames.back().seconds =
          static_cast<double>(frame->best_effort_timestamp) * av_q2d(stream->time_base);
    }
  }
  av_packet_free(&packet);
  av_frame_free(&frame);
  avcodec_free_context(&codec);
  avformat_close_input(&container);
  return film;
}

Rgb ColourOf(double luma, double cb, double cr, AVColorSpace matrix) {
  const bool hd = matrix == AVCOL_SPC_BT709;
  const double red = hd ? 0.2126 : 0.299;
  const double blue = hd ? 0.0722 : 0.114;
  const double y = (luma - 16.0) / 219.0;
  const double r = y + 2.0 * (1.0 - red) * (cr - 128.0) / 224.0;
  const double b = y + 2.0 * (1.0 - blue) * (cb - 128.0) / 224.0;
  const double g = (y - red * r - blue * b) / (1.0 - red - blue);
  return {ToByte(255.0 * r), ToByte(255.0 * g), ToByte(255.0 * b)};
}

Rgb ColourAt(const DecodedFrame& frame, AVColorSpace matrix, int x, int y) {
  return ColourOf(frame.Luma(x, y), frame.Chroma(1, x, y), frame.Chroma(2, x, y), matrix);
}

}  // namespace kelto::test
