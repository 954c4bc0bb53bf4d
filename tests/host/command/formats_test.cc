// Films of every format, read back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/command/run.h"
#include "tests/host/support/film_reader.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;

class Formats : public testing::Test {
 protected:
  Formats() {
    WritePng(photo_, MakePicture(120, 80, [](int x, int y) {
               return Rgb{uint8_t(2 * x), uint8_t(3 * y), uint8_t(255 - x - y)};
             }));
  }
  void ExpectDone(const Outcome& outcome) {
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png";
};

TEST_F(Formats, ContainersHoldTheFramesAskedFor) {
  for (const char* name : {"film.mp4", "film.mkv", "film.mov"}) {
    ExpectDone(Render(photo_, folder_ / name,
                      {"--seconds", "0.8", "--fps", "30000/1001", "--to", "2@0.1,0"}));
    const DecodedFilm film = ReadFilm(folder_ / name);
    EXPECT_EQ(film.codec, "h264") << name;
    EXPECT_EQ(film.pixelFormat, "yuv420p");
    EXPECT_NEAR(av_q2d(film.rate), 30000.0 / 1001.0, 1e-3);
    EXPECT_EQ(film.frames.size(), 24u);
    EXPECT_EQ(film.frames.at(0).width, 96);
    EXPECT_EQ(film.frames.at(0).height, 64);
  }
}

TEST_F(Formats, Y4mIsPlanar422) {
  ExpectDone(Render(photo_, folder_ / "film.y4m", {"--fps", "29.97"}));
  EXPECT_THAT(BytesOf(folder_ / "film.y4m"),
              testing::StartsWith("YUV4MPEG2 W96 H64 F30000:1001 Ip A1:1 C422 "));
  const DecodedFilm film = ReadFilm(folder_ / "film.y4m");
  EXPECT_EQ(film.pixelFormat, "yuv422p");
  EXPECT_EQ(film.frames.size(), 3u);
}

TEST_F(Formats, RawFilmsAreJustFrames) {
  ExpectDone(Render(photo_, folder_ / "film.yuyv"));
  EXPECT_EQ(BytesOf(folder_ / "film.yuyv").size(), 3u * 96 * 64 * 2);
  ExpectDone(Render(photo_, folder_ / "film.bgra", {"--size", "95x63"}));
  EXPECT_EQ(BytesOf(folder_ / "film.bgra").size(), 3u * 95 * 63 * 4);
}

TEST_F(Formats, PicturesAreNumberedFromZero) {
  ExpectDone(Render(photo_, folder_ / "frame-%04d.png", {"--size", "95x63"}));
  for (const char* name : {"frame-0000.png", "frame-0001.png", "frame-0002.png"}) {
    const Picture picture = ReadPng(folder_ / name);
    EXPECT_EQ(picture.width, 95);
    EXPECT_EQ(picture.height, 63);
  }
  EXPECT_EQ(NamesIn(folder_).size(), 4u) << "three frames and the photo";
}

TEST_F(Formats, OnePictureNeedsNoNumber) {
  ExpectDone(Render(photo_, folder_ / "still.png", {"--frames", "1"}));
  EXPECT_EQ(ReadPng(folder_ / "still.png").width, 96);
}

TEST_F(Formats, PicturesAndRawRgbAreTheSame) {
  ExpectDone(Render(photo_, folder_ / "f%d.png", {"--frames", "1"}));
  ExpectDone(Render(photo_, folder_ / "f.bgra", {"--frames", "1"}));
  const Picture picture = ReadPng(folder_ / "f0.png");
  const std::string raw = BytesOf(folder_ / "f.bgra");
  for (size_t i = 0; i < size_t{96} * 64; ++i) {
    ASSERT_EQ(picture.bytes[3 * i], uint8_t(raw[4 * i + 2]));
    ASSERT_EQ(picture.bytes[3 * i + 1], uint8_t(raw[4 * i + 1]));
    ASSERT_EQ(picture.bytes[3 * i + 2], uint8_t(raw[4 * i]));
  }
}

TEST_F(Formats, AFormatByNameGoesBeforeTheEnding) {
  ExpectDone(Render(photo_, folder_ / "film.dat", {"--format", "y4m"}));
  EXPECT_THAT(BytesOf(folder_ / "film.dat"), testing::StartsWith("YUV4MPEG2"));
}

TEST_F(Formats, EachGoesThroughAPipe) {
  for (const char* format : {"mp4", "mkv", "mov", "y4m"}) {
    const std::string name = folder_ / format;
    ExpectDone(RunKelto(
        {"render", photo_, "-o", "-", "--format", format, "--size", "96x64", "--frames", "9"},
        name));
    EXPECT_EQ(ReadFilm(name).frames.size(), 9u) << format;
  }
  const auto bytes = [&](const char* format) {
    const Outcome outcome = Render(photo_, "-", {"--format", format});
    EXPECT_EQ(outcome.code, 0);
    return outcome.out;
  };
  EXPECT_EQ(bytes("yuyv").size(), 3u * 96 * 64 * 2);
  EXPECT_EQ(bytes("bgra").size(), 3u * 96 * 64 * 4);
  const std::string png = bytes("png");
  size_t pictures = 0;
  for (size_t at = png.find("\x89PNG"); at != png.npos; at = png.find("\x89PNG", at + 1))
    ++pictures;
  EXPECT_EQ(pictures, 3u);
}

TEST_F(Formats, AFilmMadeTwiceIsTheSame) {
  ExpectDone(Render(photo_, folder_ / "a.mp4", {"--to", "3"}));
  ExpectDone(Render(photo_, folder_ / "b.mp4", {"--to", "3"}));
  EXPECT_EQ(BytesOf(folder_ / "a.mp4"), BytesOf(folder_ / "b.mp4"));
}

TEST_F(Formats, AFilmInTheWayIsReplaced) {
  ExpectDone(Render(photo_, folder_ / "film.mp4", {"--frames", "2"}));
  ExpectDone(Render(photo_, folder_ / "film.mp4", {"--frames", "4"}));
  EXPECT_EQ(ReadFilm(folder_ / "film.mp4").frames.size(), 4u);
}

TEST(Help, TellsOptionsFormatsAndExitCodes) {
  const Outcome outcome = RunKelto({"render", "--help"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.err, "");
  for (const char* word : {"--size",    "--fps",        "--seconds",
                           "--frames",  "--from",       "--to",
                           "--in",      "--out",        "--path",
                           "--filter",  "--background", "--levels",
                           "--display", "--play-mode",  "--fields",
                           "--format",  "--module",     "KELTO_MODULE",
                           "hiqual",    "y4m",          "Exit codes: 0 done, 1 failed, 2"}) {
    EXPECT_THAT(outcome.out, HasSubstr(word));
  }
}

TEST(Help, TellsTheVersion) {
  const Outcome outcome = RunKelto({"--version"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.out, testing::ContainsRegex(
                               "^kelto [0-9]+\\.[0-9]+\\.[0-9]+\ninstruction set: [a-z0-9]+\n"));
  for (const char* library : {"FFmpeg", "libavcodec", "libjpeg", "libpng", "libtiff", "libwebp"}) {
    EXPECT_THAT(outcome.out, testing::ContainsRegex(std::string(library) + "[a-z-]* [0-9]+\\."));
  }
}

}  // namespace
}  // namespace kelto::test
