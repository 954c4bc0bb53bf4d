// Interlaced films.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/host/command/run.h"
#include "tests/host/support/film_reader.h"

namespace kelto::test {
namespace {

class FilmFields : public testing::TestWithParam<const char*> {
 protected:
  bool TopFirst() const { return std::string(GetParam()) == "top"; }
  TempFolder folder_;
};

/// Where a bright edge lies in a row of luma: bright to its left.
double EdgeIn(const DecodedFrame& frame, int row) {
  const double bright = frame.Luma(2, row), dark = frame.Luma(frame.width - 3, row);
  double edge = 0.0;
  for (int x = 0; x < frame.width; ++x) edge += (frame.Luma(x, row) - dark) / (bright - dark);
  return edge;
}

TEST_P(FilmFields, TheSecondFieldIsHalfAFrameLater) {
  // A vertical edge in motion: 40 frames take it across by a quarter of the frame's 256 pixels.
  WritePng(folder_ / "edge.png", MakePicture(512, 512, [](int x, int) {
             return x < 256 ? Rgb{255, 255, 255} : Rgb{0, 0, 0};
           }));
  ASSERT_EQ(
      Render(folder_ / "edge.png", folder_ / "film.y4m",
             {"--size", "256x256", "--frames", "41", "--from", "1@-0.125,0", "--to", "1@0.125,0",
              "--in", "linear", "--out", "linear", "--fields", GetParam(), "--filter", "cubic"})
          .err,
      "");
  const DecodedFilm film = ReadFilm(folder_ / "film.y4m");
  EXPECT_EQ(film.fields, TopFirst() ? AV_FIELD_TT : AV_FIELD_BB);
  ASSERT_EQ(film.frames.size(), 41u);
  const DecodedFrame& frame = film.frames[20];
  // The view moves right, so the edge moves left by 64 / 40 pixels a frame.
  const double top = EdgeIn(frame, 128), bottom = EdgeIn(frame, 129);
  EXPECT_NEAR(top - bottom, TopFirst() ? 0.8 : -0.8, 0.15);
}

TEST_P(FilmFields, OfAStillPictureMakeUpTheWholeFrame) {
  WritePng(folder_ / "photo.png", MakePicture(200, 100, [](int x, int y) {
             return Rgb{uint8_t(x), uint8_t(128 + 60 * std::sin(y / 7.0)), uint8_t(2 * y)};
           }));
  const Words view{"--size", "200x100",       "--frames", "1",
                   "--from", "1.3@0.05,0.02", "--filter", "cubic"};
  Words fields = view;
  fields.insert(fields.end(), {"--fields", GetParam()});
  ASSERT_EQ(Render(folder_ / "photo.png", folder_ / "whole.png", view).err, "");
  ASSERT_EQ(Render(folder_ / "photo.png", folder_ / "woven.png", fields).err, "");
  const Picture whole = ReadPng(folder_ / "whole.png"), woven = ReadPng(folder_ / "woven.png");
  ASSERT_EQ(whole.bytes.size(), woven.bytes.size());
  int greatest = 0;
  for (int y = 0; y < whole.height; ++y) {
    for (int x = 0; x < whole.width; ++x) {
      greatest = std::max(greatest, Distance(whole.At(x, y), woven.At(x, y)));
    }
  }
  EXPECT_LE(greatest, 2);
}

TEST_P(FilmFields, AreMarkedInEveryContainer) {
  WritePng(folder_ / "photo.png", MakePicture(64, 64, [](int, int) { return Rgb{9, 99, 9}; }));
  for (const char* name : {"film.mp4", "film.mkv", "film.mov"}) {
    ASSERT_EQ(Render(folder_ / "photo.png", folder_ / name, {"--fields", GetParam()}).err, "");
    const DecodedFilm film = ReadFilm(folder_ / name);
    EXPECT_EQ(film.fields, TopFirst() ? AV_FIELD_TT : AV_FIELD_BB) << name;
    ASSERT_EQ(film.frames.size(), 3u);
    EXPECT_TRUE(film.frames[0].interlaced);
    EXPECT_EQ(film.frames[0].topFirst, TopFirst());
  }
}

INSTANTIATE_TEST_SUITE_P(Orders, FilmFields, testing::Values("top", "bottom"),
                         [](const auto& each) { return std::string(each.param); });

}  // namespace
}  // namespace kelto::test
