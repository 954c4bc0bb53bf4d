#include "host/film/media_file.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <climits>
#include <filesystem>
#include <vector>

#include "host/base/error.h"
#include "host/files/input_file.h"
#include "host/film/media_limits.h"

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

/// Has a decoder refuse what passes the limits, whatever a file says later than its header.
void LimitDecoder(AVDictionary** options) {
  av_dict_set_int(options, "max_pixels", kMaxMediaPixels, 0);
  av_dict_set_int(options, "max_samples", kMaxSamplesAtOnce, 0);
}

/// Looks at a file's streams, of which some are decoded for it.
int FindStreams(AVFormatContext& file) {
  std::vector<AVDictionary*> options(file.nb_streams, nullptr);
  for (AVDictionary*& each : options) LimitDecoder(&each);
  const int code = avformat_find_stream_info(&file, options.data());
  for (AVDictionary*& each : options) av_dict_free(&each);
  return code;
}

/// While it lives, the libraries get no larger piece of memory than a file may ask for to be looked
/// at.
class BlockLimit {
 public:
  BlockLimit() { av_max_alloc(kMaxMediaBlock); }
  ~BlockLimit() { av_max_alloc(INT_MAX); }  // the libraries' own limit
  BlockLimit(const BlockLimit&) = delete;
  BlockLimit& operator=(const BlockLimit&) = delete;
};

void CheckPictures(const AVCodecParameters& pictures, const std::string& path) {
  const int64_t width = pictures.width, height = pictures.height, pixels = width * height;
  const std::string size = std::to_string(width) + "x" + std::to_string(height) + " pixels";
  if (width > kMaxMediaSide || height > kMaxMediaSide) {
    throw Error(path + ": its pictures have " + size + "; the limit is " +
                std::to_string(kMaxMediaSide) + " pixels a side");
  }
  if (pixels > kMaxMediaPixels) {
    throw Error(path + ": its pictures have " + size + "; the limit is " +
                std::to_string(kMaxMediaPixels / 1000000) + " million in a video");
  }
  std::error_code error;
  const auto bytes = static_cast<int64_t>(std::filesystem::file_size(path, error));
  if (!error && pixels > kUnquestionedMediaPixels && pixels / kMaxMediaPixelsPerByte > bytes) {
    throw Error(path + ": its pictures have " + size + " in a file of " + std::to_string(bytes) +
                " bytes; the limit is " + std::to_string(kMaxMediaPixelsPerByte) +
                " pixels a byte");
  }
}

void CheckSamples(const AVCodecParameters& sound, const std::string& path) {
  if (sound.sample_rate < kMinSoundRate || sound.sample_rate > kMaxSoundRate) {
    throw Error(path + ": its sound has " + std::to_string(sound.sample_rate) +
                " samples per second; the limits are " + std::to_string(kMinSoundRate) + " and " +
                std::to_string(kMaxSoundRate));
  }
  if (sound.ch_layout.nb_channels > kMaxSoundChannels) {
    throw Error(path + ": its sound has " + std::to_string(sound.ch_layout.nb_channels) +
                " channels; the limit is " + std::to_string(kMaxSoundChannels));
  }
}

/// As many as there are cores, 0, or so few that large pictures in all of them are not too much.
int ThreadsFor(const AVCodecParameters& codec) {
  constexpr int kMost = 16;  // of the libraries' own choice
  const int64_t pixels = std::max<int64_t>(1, int64_t{codec.width} * codec.height);
  const int64_t fit = kMaxMediaPixelsInWork / pixels;
  return fit >= kMost ? 0 : static_cast<int>(std::max<int64_t>(1, fit));
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
  const BlockLimit limit;
  int code = FindForm(url, &form);
  AVFormatContext* file = nullptr;
  if (code >= 0) code = avformat_open_input(&file, url.c_str(), form, &options);
  av_dict_free(&options);
  MediaFile media(file);
  check(code);
  check(FindStreams(*file));
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

void CheckStream(const AVStream& stream, const std::string& path) {
  const AVCodecParameters& codec = *stream.codecpar;
  if (codec.codec_type == AVMEDIA_TYPE_VIDEO) CheckPictures(codec, path);
  if (codec.codec_type == AVMEDIA_TYPE_AUDIO) CheckSamples(codec, path);
}

Owned<AVCodecContext> OpenDecoder(const AVStream& stream, const std::string& path) {
  CheckStream(stream, path);
  const AVCodecID id = stream.codecpar->codec_id;
  const AVCodec* decoder = avcodec_find_decoder(id);
  if (decoder == nullptr) {
    throw Error(path + ": the installed FFmpeg cannot decode " + avcodec_get_name(id));
  }
  auto codec = Own(avcodec_alloc_context3(decoder));
  int code = avcodec_parameters_to_context(codec.get(), stream.codecpar);
  codec->pkt_timebase = stream.time_base;
  codec->thread_count = ThreadsFor(*stream.codecpar);
  AVDictionary* options = nullptr;
  LimitDecoder(&options);
  if (code >= 0) code = avcodec_open2(codec.get(), decoder, &options);
  av_dict_free(&options);
  if (code < 0) {
    throw Error(path + ": cannot be decoded as " + avcodec_get_name(id) + ": " + LibavText(code));
  }
  return codec;
}

}  // namespace kelto::host
