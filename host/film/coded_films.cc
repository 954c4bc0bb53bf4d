#include "host/film/coded_films.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libswscale/swscale.h>
}

#include <algorithm>

#include "host/film/animation.h"
#include "host/film/encoder.h"
#include "host/film/libav.h"
#include "host/film/sound_source.h"

namespace kelto::host {
namespace {

constexpr PixelLayout kCodedLayout = PixelLayout::kYCbYCr;
constexpr PixelLayout kAnimatedLayout = PixelLayout::kBGRA;

constexpr FilmKind kCodedKinds[] = {
    {"mp4", nullptr, "MP4; H.264 unless --codec says otherwise", kCodedLayout, 2, 1, 2, false,
     OpenMp4},
    {"mkv", nullptr, "Matroska; H.264 unless --codec says otherwise", kCodedLayout, 2, 1, 2, false,
     OpenMkv},
    {"mov", nullptr, "MOV; H.264 unless --codec says otherwise", kCodedLayout, 2, 1, 2, false,
     OpenMov},
    {"webm", nullptr, "WebM; VP9 unless --codec says otherwise", kCodedLayout, 2, 1, 2, false,
     OpenWebm},
    {"gif", nullptr, "animation of 256 colours, which plays over and over", kAnimatedLayout, 1, 1,
     2, false, OpenGif, CheckAnimation},
    {"webp", nullptr, "animation in good quality, which plays over and over", kAnimatedLayout, 1, 1,
     2, false, OpenWebp, CheckAnimation},
    {"apng", nullptr, "animation without loss, which plays over and over", kAnimatedLayout, 1, 1, 2,
     false, OpenApng, CheckAnimation},
};

/// A library's version, of which FFmpeg makes one number.
Library FfmpegLibrary(const char* name, unsigned version) {
  return {name, std::to_string(AV_VERSION_MAJOR(version)) + "." +
                    std::to_string(AV_VERSION_MINOR(version)) + "." +
                    std::to_string(AV_VERSION_MICRO(version))};
}

}  // namespace

std::span<const FilmKind> CodedFilmKinds() { return kCodedKinds; }

const char* UsualFilmKind() { return "mp4"; }

void CheckSound(const std::string& path) { SoundSource sound(path); }

double SoundSeconds(const std::string& path) {
  SoundSource sound(path);
  const auto packet = Own(av_packet_alloc());
  int64_t end = 0;
  while (sound.Read(*packet)) end = std::max(end, packet->pts + packet->duration);
  return static_cast<double>(end) * av_q2d(sound.TimeBase());
}

Libraries CodedFilmLibraries() {
  return {{"FFmpeg", av_version_info()},
          FfmpegLibrary("libavformat", avformat_version()),
          FfmpegLibrary("libavcodec", avcodec_version()),
          FfmpegLibrary("libavutil", avutil_version()),
          FfmpegLibrary("libswscale", swscale_version())};
}

}  // namespace kelto::host
