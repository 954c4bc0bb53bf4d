#include "host/film/media_file.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include "host/base/error.h"
#include "host/files/input_file.h"

namespace kelto::host {
namespace {

/// Forms that are no media themselves: lists of other files or addresses, and any text, which would
/// pass for a film of a terminal.
constexpr const char* kRefused = "hls,dash,concat,concatf,imf,sdp,rtsp,tty,lrc,ffmetadata";

int FindForm(const std::string& url, const AVInputFormat** form) {
  AVIOContext* bytes = nullptr;
  int code = avio_open(&bytes, url.c_str(), AVIO_FLAG_READ);
  if (code < 0) return code;
  code = av_probe_input_buffer2(bytes, form, url.c_str(), nullptr, 0, 0);
  avio_closep(&bytes);
  if (code >= 0 && av_match_name((*form)->name, kRefused) != 0) code = AVERROR_INVALIDDATA;
  return code;
}

double SecondsAt(const AVStream& stream) {
  if (stream.start_time == AV_NOPTS_VALUE) return 0.0;
  return static_cast<double>(stream.start_time) * av_q2d(stream.time_base);
}

}  // namespace

MediaFile OpenMedia(const std::string& path, const std::string& what) {
  SilenceLibav();
  CheckFile(path, what);
  const auto check = [&](int code) {
    if (code < 0) throw Error(path + ": cannot be read as " + what + ": " + LibavText(code));
  };
  const std::string url = "file:" + path;
  AVDictionary* options = nullptr;
  av_dict_set(&options, "protocol_whitelist", "file", 0);
  // A picture's name is meant as it is, whatever signs are in it.
  av_dict_set(&options, "pattern_type", "none", 0);
  const AVInputFormat* form = nullptr;
  int code = FindForm(url, &form);
  AVFormatContext* file = nullptr;
  if (code >= 0) code = avformat_open_input(&file, url.c_str(), form, &options);
  av_dict_free(&options);
  MediaFile media(file);
  check(code);
  check(avformat_find_stream_info(file, nullptr));
  return media;
}

int PictureStreamOf(AVFormatContext& file) {
  const int best = av_find_best_stream(&file, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
  if (best < 0) return -1;
  return (file.streams[best]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0 ? -1 : best;
}

int SoundStreamOf(AVFormatContext& file) {
  const int best = av_find_best_stream(&file, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
  return best < 0 ? -1 : best;
}

double StartOf(AVFormatContext& file) {
  int stream = PictureStreamOf(file);
  if (stream < 0) stream = SoundStreamOf(file);
  return stream < 0 ? 0.0 : SecondsAt(*file.streams[stream]);
}

Owned<AVCodecContext> OpenDecoder(const AVStream& stream, const std::string& path) {
  const AVCodecID id = stream.codecpar->codec_id;
  const AVCodec* decoder = avcodec_find_decoder(id);
  if (decoder == nullptr) {
    throw Error(path + ": the installed FFmpeg cannot decode " + avcodec_get_name(id));
  }
  auto codec = Own(avcodec_alloc_context3(decoder));
  int code = avcodec_parameters_to_context(codec.get(), stream.codecpar);
  codec->pkt_timebase = stream.time_base;
  codec->thread_count = 0;  // as many as there are cores
  if (code >= 0) code = avcodec_open2(codec.get(), decoder, nullptr);
  if (code < 0) {
    throw Error(path + ": cannot be decoded as " + avcodec_get_name(id) + ": " + LibavText(code));
  }
  return codec;
}

}  // namespace kelto::host
