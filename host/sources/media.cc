#include "host/sources/media.h"

#include <limits>
#include <vector>

#include "host/base/error.h"
#include "host/film/coded_films.h"
#include "host/processes/reader_process.h"

namespace kelto::host {

VideoInfo CheckVideo(const std::string& path) {
  const std::vector<double> found = NumbersApart(path, 10, [&] {
    const VideoInfo info = LookAtVideo(path);
    return std::vector<double>{static_cast<double>(info.size.width),
                               static_cast<double>(info.size.height),
                               static_cast<double>(info.sampleAspect.width),
                               static_cast<double>(info.sampleAspect.height),
                               static_cast<double>(info.rate.numerator),
                               static_cast<double>(info.rate.denominator),
                               static_cast<double>(info.fields),
                               info.seconds,
                               static_cast<double>(info.frames),
                               info.sound ? 1.0 : 0.0};
  });
  const auto whole = [&](size_t place, int32_t least, int32_t most) {
    return static_cast<int32_t>(IntegerFrom(found[place], least, most, path));
  };
  constexpr int32_t kMost = std::numeric_limits<int32_t>::max(), kMostAspect = 65535;
  VideoInfo info;
  info.size = {whole(0, 1, kMost), whole(1, 1, kMost)};
  info.sampleAspect = {whole(2, 1, kMostAspect), whole(3, 1, kMostAspect)};
  info.rate = {whole(4, 1, kMost), whole(5, 1, kMost)};
  info.fields =
      static_cast<FieldOrder>(whole(6, 0, static_cast<int32_t>(FieldOrder::kBottomFirst)));
  info.seconds = found[7];
  info.frames = whole(8, 1, kMost);
  info.sound = whole(9, 0, 1) == 1;
  return info;
}

void CheckSoundFile(const std::string& path) {
  ReadApart(path, {}, [&] {
    CheckSound(path);
    return std::string();
  });
}

double LookAtSound(const std::string& path) {
  const double seconds =
      NumbersApart(path, 1, [&] { return std::vector<double>{SoundSeconds(path)}; })[0];
  if (!(seconds > 0.0)) throw Error(path + ": its sound has no length");
  return seconds;
}

}  // namespace kelto::host
