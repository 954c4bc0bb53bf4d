// The move that the options describe, seen in frames.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

constexpr int kSide = 128;  // of the frames
/// Levels that a place may be off: one of the photo's pixels is one level, and resampling and two
/// conversions of colour add to that.
constexpr int kMotionTolerance = 6;

class Motion : public testing::Test {
 protected:
  /// Red runs from left to right, green from top to bottom, over a square.
  Motion() {
    WritePng(photo_, MakePicture(256, 256, [](int x, int y) {
               return Rgb{uint8_t(x), uint8_t(y), 128};
             }));
  }

  std::vector<Picture> Film(int frames, const Words& more) {
    Words words{"--size", "128x128", "--frames", std::to_string(frames)};
    if (std::find(more.begin(), more.end(), "--filter") == more.end()) {
      words.insert(words.end(), {"--filter", "triangle"});
    }
    words.insert(words.end(), more.begin(), more.end());
    const Outcome outcome = Render(photo_, folder_ / "f%d.png", words);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    std::vector<Picture> film;
    film.reserve(static_cast<size_t>(frames));
    for (int i = 0; i < frames; ++i) {
      film.push_back(ReadPng(folder_ / std::string("f").append(std::to_string(i)).append(".png")));
    }
    return film;
  }
  static Rgb Middle(const Picture& picture) { return picture.At(kSide / 2, kSide / 2); }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png";
};

TEST_F(Motion, HoldShowsThePhotoAtItsSizeAndStandsStill) {
  const auto film = Film(3, {"--move", "hold"});
  EXPECT_EQ(film[0].bytes, film[2].bytes);
  EXPECT_LE(Distance(Middle(film[0]), {128, 128, 128}), kMotionTolerance);
  EXPECT_LE(Distance(film[0].At(2, kSide / 2), {5, 128, 128}), kMotionTolerance);
  EXPECT_LE(Distance(film[0].At(kSide - 3, kSide / 2), {250, 128, 128}), kMotionTolerance);
}

TEST_F(Motion, OneViewIsHeldFromBeginningToEnd) {
  const auto film = Film(3, {"--view", "2@0.25,-0.25"});
  EXPECT_EQ(film[0].bytes, film[2].bytes);
  EXPECT_LE(Distance(Middle(film[0]), {192, 64, 128}), kMotionTolerance)
      << ToString(Middle(film[0]));
}

TEST_F(Motion, FromOrToAloneEndsOrBeginsWithTheWholePhoto) {
  const auto whole = Film(1, {"--move", "hold"});
  const auto to = Film(3, {"--to", "2@0.25,-0.25"});
  EXPECT_EQ(to[0].bytes, whole[0].bytes);
  EXPECT_LE(Distance(Middle(to[2]), {192, 64, 128}), kMotionTolerance);
  const auto from = Film(3, {"--from", "2@0.25,-0.25"});
  EXPECT_LE(Distance(Middle(from[0]), {192, 64, 128}), kMotionTolerance);
  EXPECT_EQ(from[2].bytes, whole[0].bytes);
}

TEST_F(Motion, WithoutViewsAFilmMovesGentlyAndOneFrameStandsStill) {
  const auto film = Film(3, {}), whole = Film(1, {"--move", "hold"});
  EXPECT_NE(film[0].bytes, film[2].bytes);
  EXPECT_EQ(Film(1, {})[0].bytes, whole[0].bytes);
}

TEST_F(Motion, TwoViewsAreTheFirstAndTheLastFrame) {
  const auto film = Film(9, {"--from", "2@-0.25,0", "--to", "2@0.25,0.125"});
  EXPECT_LE(Distance(Middle(film.front()), {64, 128, 128}), kMotionTolerance);
  EXPECT_LE(Distance(Middle(film.back()), {192, 160, 128}), kMotionTolerance);
}

TEST_F(Motion, LinearIsEvenAndEaseIsNot) {
  const auto red = [&](const char* word) {
    const auto film =
        Film(9, {"--from", "2@-0.25,0", "--to", "2@0.25,0", "--in", word, "--out", word});
    std::vector<int> levels;
    levels.reserve(film.size());
    for (const Picture& picture : film) levels.push_back(Middle(picture).r);
    return levels;
  };
  const auto linear = red("linear"), ease = red("ease");
  for (int i = 0; i < 9; ++i) EXPECT_NEAR(linear[i], 64 + 16 * i, 3) << "frame " << i;
  EXPECT_LT(ease[1], linear[1] - 2);
  EXPECT_NEAR(ease[4], linear[4], 3);
  EXPECT_GT(ease[7], linear[7] + 2);
}

TEST_F(Motion, HoldStandsAtTheFirstView) {
  const auto film = Film(9, {"--from", "2@-0.25,0", "--to", "2@0.25,0", "--out", "hold"});
  EXPECT_EQ(film[0].bytes, film[7].bytes);
  EXPECT_LE(Distance(Middle(film[0]), {64, 128, 128}), kMotionTolerance);
}

TEST_F(Motion, BesideThePhotoTheBackgroundShows) {
  const auto film = Film(1, {"--from", "0.5", "--background", "#ff0000"});
  EXPECT_LE(Distance(film[0].At(4, 4), {255, 0, 0}), 3);
  EXPECT_LE(Distance(Middle(film[0]), {128, 128, 128}), kMotionTolerance);
}

TEST_F(Motion, TheSourceDisplayShowsThePhotoAtZoom1WithTheViewOutlined) {
  const auto film = Film(1, {"--from", "2", "--display", "source"});
  EXPECT_LE(Distance(film[0].At(6, 20), {13, 41, 128}), 8) << ToString(film[0].At(6, 20));
  const auto plain = Film(1, {});
  int outlined = 0;
  for (int x = 0; x < kSide; ++x) {
    if (Distance(film[0].At(x, kSide / 2), plain[0].At(x, kSide / 2)) > 40) ++outlined;
  }
  EXPECT_GE(outlined, 2);
  EXPECT_LE(outlined, 12);
}

TEST_F(Motion, StudioLevelsOfThePhotoAreTakenAsTheyAre) {
  const auto rgb = Film(1, {}), studio = Film(1, {"--levels", "601"});
  // Taken for studio levels, 64 is darker on the screen than it is as full-range 64.
  EXPECT_NEAR(rgb[0].At(32, 64).r, 64, 3);
  EXPECT_NEAR(studio[0].At(32, 64).r, (64 - 16) * 255.0 / 219.0, 4);
}

TEST_F(Motion, EveryFilterAndPlayModeRendersThePhoto) {
  for (const char* filter :
       {"realtime", "triangle", "quadratic", "cubic", "catmull", "gaussian", "hiqual", "ultra"}) {
    for (const char* mode : {"0", "1"}) {
      const auto film = Film(1, {"--filter", filter, "--play-mode", mode, "--from", "1.5"});
      EXPECT_LE(Distance(Middle(film[0]), {128, 128, 128}), kMotionTolerance)
          << filter << " " << mode;
    }
  }
}

}  // namespace
}  // namespace kelto::test
