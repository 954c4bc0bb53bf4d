// Videos behind transparent photos.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/command/deep_films.h"

namespace kelto::test {
namespace {

class DeepVideos : public DeepFilms {
 protected:
  /// The ffmpeg program's `source` without loss; `more` are options of the film.
  std::string Video(const std::string& source, const std::string& more = "") {
    const std::string path = folder_ / "video.mkv";
    const Outcome made = RunShell("ffmpeg -nostdin -v error -f lavfi -i \"" + source +
                                  "\" -c:v ffv1 " + more + " -y " + path);
    EXPECT_EQ(made.code, 0) << made.err;
    return path;
  }
};

TEST_F(DeepVideos, AVideoShowsThroughALogo) {
  const std::string photo = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  const std::string video =
      Video("color=gray:size=64x64:rate=25:duration=0.2,geq=lum='40+20*N':cb=128:cr=128");
  Film(photo, "over.yuyv", {"--over", video, "--size", "64x64", "--view", "1"});
  const std::string bytes = BytesOf(folder_ / "over.yuyv");
  ASSERT_EQ(bytes.size(), size_t{64} * 64 * 2 * 5);
  for (size_t frame = 0; frame < 5; ++frame) {
    const size_t first = frame * 64 * 64 * 2;
    EXPECT_NEAR(static_cast<uint8_t>(bytes[first]), 40 + 20 * static_cast<int>(frame), 3);
    EXPECT_GE(static_cast<uint8_t>(bytes[first + 2 * (32 * 64 + 32)]), 233) << "the logo";
  }
}

TEST_F(DeepVideos, OfTenBitsKeepTheirLevelsBesideALogo) {
  constexpr int kRampWidth = 64, kRampHeight = 512;
  // A logo in the middle; beside it, the video alone.
  const std::string photo = WritePhoto("disc.png", 128, 128, Disc, "rgba64be");
  const auto luma = [](int y) { return 200 + y; };
  for (const char* format : {"yuv420p10", "yuv422p10", "yuv444p10"}) {
    const std::string video =
        Video("color=gray:size=64x512:rate=25:duration=0.04,format=" + std::string(format) +
              ",geq=lum='200+Y':cb='512+X/SW/2':cr='528-X/SW/2'");
    const std::string film =
        Film(photo, "over.yuv422p10", {"--over", video, "--size", "64x512", "--view", "0.1@0,0"});
    const std::string bytes = BytesOf(film);
    ASSERT_EQ(bytes.size(), size_t{kRampWidth} * kRampHeight * 2 * 2) << "one frame";
    std::vector<uint16_t> words(bytes.size() / 2);
    std::memcpy(words.data(), bytes.data(), bytes.size());
    const uint16_t* cb = &words[size_t{kRampWidth} * kRampHeight];
    const uint16_t* cr = cb + kRampWidth / 2 * kRampHeight;
    std::set<int> levels;
    for (int y = 0; y < kRampHeight; ++y) {
      const int level = words[static_cast<size_t>(y * kRampWidth + 2)];
      ASSERT_NEAR(level, luma(y), 1) << format << ", row " << y;
      levels.insert(level);
      for (int pair = 1; pair < 6; ++pair) {
        ASSERT_NEAR(cb[y * kRampWidth / 2 + pair], 512 + pair, 1) << format << ", row " << y;
        ASSERT_NEAR(cr[y * kRampWidth / 2 + pair], 528 - pair, 1) << format << ", row " << y;
      }
    }
    EXPECT_GE(levels.size(), 500u) << format << ": eight bits have about half of them";
    EXPECT_GE(words[size_t{kRampHeight} / 2 * kRampWidth + kRampWidth / 2], 935) << "the logo";
  }
}

TEST_F(DeepVideos, OfEightBitsAreNotDitheredInFilmsOfEight) {
  const std::string photo = WritePhoto("disc.png", 128, 128, Disc, "rgba64be");
  const std::string video =
      Video("color=gray:size=64x64:rate=25:duration=0.04,format=yuv444p,geq=lum=101:cb=140:cr=117");
  const std::string bytes =
      BytesOf(Film(photo, "over.bgra", {"--over", video, "--size", "64x64", "--view", "0.5"}));
  ASSERT_EQ(bytes.size(), size_t{64} * 64 * 4);
  for (size_t i = 0; i < size_t{64} * 10 * 4; ++i) ASSERT_EQ(bytes[i], bytes[i % 4]) << i;
}

TEST_F(DeepVideos, OfHighDynamicRangeComeWithAMessage) {
  const std::string photo = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  for (const auto& [transfer, name] :
       {std::pair{"smpte2084", "PQ"}, std::pair{"arib-std-b67", "HLG"}, std::pair{"bt709", ""}}) {
    const std::string video =
        Video("color=gray:size=64x64:rate=25:duration=0.2,format=yuv420p10",
              "-color_primaries bt2020 -colorspace bt2020nc -color_trc " + std::string(transfer));
    const Words words = {"render", photo,    "-o",    folder_ / "f.yuyv", "--over",
                         video,    "--size", "64x64", "--jobs",           "3"};
    const Outcome made = RunKelto(words);
    EXPECT_EQ(made.code, 0) << made.err;
    const bool high = *name != '\0';
    EXPECT_EQ(made.err, high ? "kelto: " + video + ": it has high dynamic range (" + name +
                                   ") and comes out pale unless it is converted first\n"
                             : "");
    Words strict = words;
    strict.push_back("--strict");
    EXPECT_EQ(RunKelto(strict).code != 0, high) << transfer;
  }
}

}  // namespace
}  // namespace kelto::test
