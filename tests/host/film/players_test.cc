// Films as two players see them that share no code: one of the FFmpeg libraries, one of GStreamer
// with decoders from elsewhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>

#include "host/film/codecs.h"
#include "host/film/encoder.h"
#include "tests/host/command/run.h"
#include "tests/host/support/film_reader.h"
#include "tests/host/support/other_player.h"
#include "tests/host/support/videos.h"

namespace kelto::test {
namespace {

struct Film {
  const char* name;
  const char* codec;
};

/// A photo without detail that coding would lose.
Picture SmoothPhoto(int width, int height) {
  return MakePicture(width, height, [](int x, int y) {
    const auto wave = [](double phase) {
      return static_cast<uint8_t>(std::lround(127.5 + 90.0 * std::sin(phase)));
    };
    return Rgb{wave(x * 0.005), wave(y * 0.006 + 1.0), wave((x + y) * 0.004 + 2.0)};
  });
}

/// The greatest difference to a picture, in any channel, of the mean colours of 16x16 pixels, which
/// is what a block of chroma covers: lossy coding scatters single pixels about their levels.
double Difference(const DecodedFrame& frame, AVColorSpace matrix, const Picture& picture) {
  double greatest = 0.0;
  for (int top = 0; top + 16 <= picture.height; top += 16) {
    for (int left = 0; left + 16 <= picture.width; left += 16) {
      std::array<double, 3> sums{};
      for (int y = top; y < top + 16; ++y) {
        for (int x = left; x < left + 16; ++x) {
          const Rgb seen = ColourAt(frame, matrix, x, y), wanted = picture.At(x, y);
          sums[0] += seen.r - wanted.r;
          sums[1] += seen.g - wanted.g;
          sums[2] += seen.b - wanted.b;
        }
      }
      for (const double sum : sums) greatest = std::max(greatest, std::abs(sum) / 256.0);
    }
  }
  return greatest;
}

class Players : public testing::TestWithParam<Film> {
 protected:
  TempFolder folder_;
};

TEST_P(Players, SeeTheSameFilmAsThePictures) {
  const auto [name, codec] = GetParam();
  WritePng(folder_ / "photo.png", SmoothPhoto(900, 700));
  for (const auto& [size, matrix, colorimetry] :
       {std::tuple{"320x240", AVCOL_SPC_SMPTE170M, "2:4:5:1"},
        std::tuple{"824x640", AVCOL_SPC_BT709, "bt709"}}) {
    const Words options{"--size",   size,     "--fps",      "25",    "--frames",
                        "6",        "--from", "1.2@-0.1,0", "--to",  "1.8@0.1,0.05",
                        "--filter", "cubic",  "--motion",   "linear"};
    ASSERT_EQ(Render(folder_ / "photo.png", folder_ / name, options).err, "");
    ASSERT_EQ(Render(folder_ / "photo.png", folder_ / "f%02d.png", options).err, "");
    const Picture first = ReadPng(folder_ / "f00.png"), last = ReadPng(folder_ / "f05.png");

    const DecodedFilm film = ReadFilm(folder_ / name);
    EXPECT_EQ(film.codec, codec);
    EXPECT_EQ(film.matrix, matrix);
    EXPECT_NEAR(film.seconds, 6 / 25.0, 0.002);
    ASSERT_EQ(film.frames.size(), 6u);
    EXPECT_LE(Difference(film.frames.front(), matrix, first), 3);
    EXPECT_LE(Difference(film.frames.back(), matrix, last), 3);

    const PlayedFilm played = PlayElsewhere(folder_ / name, codec, first.width, first.height);
    EXPECT_EQ(played.Field("framerate"), "25/1") << played.caps;
    EXPECT_EQ(played.Field("pixel-aspect-ratio"), "1/1") << played.caps;
    EXPECT_EQ(played.Field("colorimetry"), colorimetry) << played.caps;
    EXPECT_EQ(played.Field("interlace-mode"), "progressive") << played.caps;
    EXPECT_NEAR(played.seconds, 6 / 25.0, 0.002);
    ASSERT_EQ(played.frames.size(), 6u);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(played.frames[i].seconds, i / 25.0, 0.001);
    EXPECT_LE(Difference(played.frames.front(), matrix, first), 3);
    EXPECT_LE(Difference(played.frames.back(), matrix, last), 3);
  }
}

INSTANTIATE_TEST_SUITE_P(Films, Players,
                         testing::Values(Film{"film.mp4", "h264"}, Film{"film.mkv", "h264"},
                                         Film{"film.mov", "h264"}, Film{"film.webm", "vp9"}),
                         [](const auto& film) { return std::string(film.param.name).substr(5); });

/// Codecs that are no kind's usual one.
class OtherCodecs : public testing::TestWithParam<std::tuple<const char*, const char*, Film>> {
 protected:
  TempFolder folder_;
};

TEST_P(OtherCodecs, DecodeToTheSameLevelsEverywhere) {
  const auto [kind, codec, film] = GetParam();
  const host::FrameSize size{512, 320};
  const std::string path = folder_ / film.name;
  WriteVideo(
      path, {size, {25, 1}}, 20,
      [&](int number) {
        return MakeYCbYCr(size, [=](int x, int y) {
          return Rgb{uint8_t(x / 3 + 2 * number), uint8_t(y / 2), uint8_t((x + y) / 4)};
        });
      },
      codec);
  const DecodedFilm read = ReadFilm(path);
  const PlayedFilm played = PlayElsewhere(path, film.codec, size.width, size.height);
  EXPECT_NEAR(played.seconds, 0.8, 0.002);
  ASSERT_EQ(played.frames.size(), 20u);
  ASSERT_EQ(read.frames.size(), 20u);
  // Decoding is exact: two right decoders give the same bytes.
  for (size_t i = 0; i < 20; ++i) EXPECT_TRUE(read.frames[i].planes == played.frames[i].planes);
}

INSTANTIATE_TEST_SUITE_P(Films, OtherCodecs,
                         testing::Values(std::tuple{"mp4", "h265", Film{"film.mp4", "hevc"}},
                                         std::tuple{"mkv", "h265", Film{"film.mkv", "hevc"}},
                                         std::tuple{"mp4", "av1", Film{"film.mp4", "av1"}},
                                         std::tuple{"webm", "av1", Film{"film.webm", "av1"}},
                                         std::tuple{"mkv", "vp9", Film{"film.mkv", "vp9"}}),
                         [](const auto& each) {
                           return std::string(std::get<1>(each.param)) + "_" +
                                  std::get<0>(each.param);
                         });

}  // namespace
}  // namespace kelto::test
