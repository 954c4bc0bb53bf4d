// The photo's colours in the film, as a player shows them.
#include <gtest/gtest.h>

#include "tests/host/command/run.h"
#include "tests/host/support/film_reader.h"

namespace kelto::test {
namespace {

constexpr int kTolerance = 3;

class FilmColours : public testing::TestWithParam<const char*> {
 protected:
  FilmColours() {
    WritePng(photo_,
             MakePicture(640, 360, [&](int x, int) { return bars_[x * bars_.size() / 640]; }));
  }

  /// The column in the middle of bar `i` of a frame.
  int Middle(size_t i, int width) const {
    return static_cast<int>((2 * i + 1) * width / (2 * bars_.size()));
  }
  void ExpectColour(Rgb seen, Rgb wanted) {
    EXPECT_LE(Distance(seen, wanted), kTolerance)
        << ToString(wanted) << " became " << ToString(seen);
  }

  const std::vector<Rgb> bars_ = BarColours();
  TempFolder folder_;
  const std::string photo_ = folder_ / "bars.png";
};

TEST_P(FilmColours, AreThePhotosInAFilm) {
  ASSERT_EQ(Render(photo_, folder_ / "film.mp4", {"--size", GetParam(), "--frames", "2"}).err, "");
  const DecodedFilm film = ReadFilm(folder_ / "film.mp4");
  ASSERT_EQ(film.frames.size(), 2u);
  const DecodedFrame& frame = film.frames[0];
  EXPECT_EQ(film.matrix, frame.height > 576 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M);
  EXPECT_EQ(film.range, AVCOL_RANGE_MPEG);
  for (size_t i = 0; i < bars_.size(); ++i) {
    ExpectColour(ColourAt(frame, film.matrix, Middle(i, frame.width), frame.height / 2), bars_[i]);
  }
}

TEST_P(FilmColours, AreThePhotosInPictures) {
  ASSERT_EQ(Render(photo_, folder_ / "f.png", {"--size", GetParam(), "--frames", "1"}).err, "");
  const Picture picture = ReadPng(folder_ / "f.png");
  for (size_t i = 0; i < bars_.size(); ++i) {
    ExpectColour(picture.At(Middle(i, picture.width), picture.height / 2), bars_[i]);
  }
}

TEST_P(FilmColours, OfTheBackgroundAreTheOnesAskedFor) {
  for (const char* levels : {"rgb", "601"}) {
    for (const auto& [text, colour] : {std::pair{"#000000", Rgb{0, 0, 0}},
                                       {"#ffffff", Rgb{255, 255, 255}},
                                       {"#202020", Rgb{32, 32, 32}},
                                       {"#c08040", Rgb{192, 128, 64}}}) {
      // A view of nothing but background.
      ASSERT_EQ(Render(photo_, folder_ / "film.mp4",
                       {"--size", GetParam(), "--from", "1@5,5", "--background", text, "--levels",
                        levels, "--frames", "1"})
                    .err,
                "");
      const DecodedFilm film = ReadFilm(folder_ / "film.mp4");
      ASSERT_EQ(film.frames.size(), 1u);
      ExpectColour(ColourAt(film.frames[0], film.matrix, 20, 20), colour);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, FilmColours, testing::Values("640x360", "1280x720"),
                         [](const auto& each) { return "At" + std::string(each.param); });

}  // namespace
}  // namespace kelto::test
