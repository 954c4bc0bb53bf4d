// Films and shows of photos of 16 bits, and of transparent ones.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tests/host/command/run.h"

namespace kelto::test {

/// Red, green, blue and alpha of 0..1.
using DeepPixel = std::array<double, 4>;
using DeepFunction = std::function<DeepPixel(int x, int y)>;

class DeepFilms : public testing::Test {
 protected:
  /// Writes a PNG or TIFF of 16 bits, or of eight; `format` is the ffmpeg program's name of it.
  std::string WritePhoto(const std::string& name, int width, int height, const DeepFunction& pixel,
                         const std::string& format = "rgb48") {
    std::vector<uint16_t> words;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        for (const double value : pixel(x, y)) {
          words.push_back(static_cast<uint16_t>(std::lround(value * 65535)));
        }
      }
    }
    const std::string raw = folder_ / "photo.raw", path = folder_ / name;
    std::ofstream(raw, std::ios::binary)
        .write(reinterpret_cast<const char*>(words.data()),
               static_cast<std::streamsize>(words.size() * 2));
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const Outcome made =
        RunShell("ffmpeg -nostdin -v error -f rawvideo -pix_fmt rgba64le -s " + size + " -i " +
                 raw + " -sws_dither none -pix_fmt " + format + " -y " + path);
    EXPECT_EQ(made.code, 0) << made.err;
    return path;
  }

  std::string Film(const std::string& photo, const std::string& name, Words more) {
    Words words{"render", photo, "-o", folder_ / name};
    words.insert(words.end(), more.begin(), more.end());
    const Outcome made = RunKelto(words);
    EXPECT_EQ(made.code, 0) << made.err;
    return folder_ / name;
  }

  /// Samples of the film's frames in the ffmpeg program's `format`, of `Sample`.
  template <typename Sample>
  std::vector<Sample> Decoded(const std::string& film, const std::string& format,
                              const std::string& decoder = "") {
    const std::string raw = folder_ / "film.raw";
    const Outcome made = RunShell("ffmpeg -nostdin -v error " + decoder + " -i " + film +
                                  " -f rawvideo -pix_fmt " + format + " -y " + raw);
    EXPECT_EQ(made.code, 0) << made.err;
    const std::string bytes = BytesOf(raw);
    std::vector<Sample> samples(bytes.size() / sizeof(Sample));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(Sample));
    return samples;
  }

  std::string PixelFormatOf(const std::string& film) {
    return RunShell("ffprobe -v error -select_streams v -show_entries stream=pix_fmt -of csv=p=0 " +
                    film)
        .out;
  }

  TempFolder folder_;
};

/// Levels down the middle column of a frame's first plane, and the longest run of one of them.
template <typename Sample>
struct Column {
  Column(const std::vector<Sample>& frame, int width, int height) {
    int run = 0;
    for (int y = 0; y < height; ++y) {
      const Sample level = frame[static_cast<size_t>(y * width + width / 2)];
      run = y > 0 && level == last ? run + 1 : 1;
      last = level;
      longest = std::max(longest, run);
      levels.insert(level);
    }
  }
  Sample last = 0;
  int longest = 0;
  std::set<Sample> levels;
};

/// A sky: grey from studio level 105.73 at the top to 67.12. These are levels 60 to 104 of a photo
/// of eight bits, and all that the effect shows as levels 68 to 105: it brings two levels of a
/// photo to one here and there, 60 and 61 and 103 and 104 among them.
inline constexpr int kSkyWidth = 64, kSkyHeight = 1080;
inline double SkyLevel(int y) { return 105.73 - 38.61 * y / (kSkyHeight - 1); }
inline DeepPixel Sky(int, int y) {
  const double grey = (SkyLevel(y) - 16.0) / 219.0;
  return {grey, grey, grey, 1.0};
}
/// Rounded to eight bits here, since programs that convert photos need not round to nearest.
inline DeepPixel FlatSky(int x, int y) {
  const double grey = std::round(255 * Sky(x, y)[0]) / 255;
  return {grey, grey, grey, 1.0};
}
inline const Words kSkyFilm = {"--size", "64x1080", "--frames", "2", "--from", "1", "--to", "1.01"};

/// A white disc on nothing.
inline DeepPixel Disc(int x, int y) {
  const double distance = std::hypot(x - 63.5, y - 63.5);
  const double alpha = std::clamp(48.5 - distance, 0.0, 1.0);
  return {1.0, 1.0, 1.0, alpha};
}

}  // namespace kelto::test
