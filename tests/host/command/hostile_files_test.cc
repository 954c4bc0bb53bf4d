// Files that would take gigabytes: each is refused in one line, and no process takes them before.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/host/command/run.h"
#include "tests/support/hostile_files.h"
#include "tests/support/peak_memory.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;

/// What the command takes for a small picture, and as much again.
constexpr int64_t kMostMiB = 150;

int64_t PeakOf(const Outcome& outcome) { return kMemoryIsMeasured ? outcome.peakMiB : 0; }

class HostileFile : public testing::Test {
 protected:
  HostileFile() {
    WritePng(photo_, MakePicture(64, 64, [](int x, int y) {
               return Rgb{uint8_t(4 * x), uint8_t(4 * y), 0};
             }));
  }

  /// The one line with which `words` is refused, by processes that stay small.
  static std::string Refusal(const Words& words) {
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_LE(PeakOf(outcome), kMostMiB) << outcome.err;
    return outcome.err;
  }
  std::string OfPicture(const std::string& name, const std::vector<uint8_t>& bytes) const {
    WriteBytes(folder_ / name, bytes);
    return Refusal({"render", folder_ / name, "-o", out_, "--frames", "2", "--jobs", "1"});
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png", out_ = folder_ / "film.y4m";
};

TEST_F(HostileFile, AnOrdinaryFilmStaysFarBelowTheLimitOfTheseTests) {
  const Outcome outcome = RunKelto({"render", photo_, "-o", out_, "--frames", "2", "--jobs", "1"});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_LE(PeakOf(outcome), kMostMiB);
}

TEST_F(HostileFile, PngOfOneBit) {
  EXPECT_THAT(OfPicture("a.png", FlatPng(32767)),
              HasSubstr("32767x32767 pixels take 4095 MiB; the limit is 2047 MiB"));
  EXPECT_THAT(OfPicture("b.png", FlatPng(23200)),
              HasSubstr("23200x23200 pixels take 2053 MiB; the limit is 2047 MiB"));
}

TEST_F(HostileFile, Jpeg) {
  EXPECT_THAT(OfPicture("progressive.jpg", FlatJpeg(30000, true)),
              HasSubstr("30000x30000 pixels take 3433 MiB; the limit is 2047 MiB"));
  EXPECT_THAT(OfPicture("grey.jpg", FlatJpeg(30000, false)), HasSubstr("the limit is 2047 MiB"));
}

TEST_F(HostileFile, TiffOfSharedStrips) {
  EXPECT_THAT(OfPicture("rgb.tif", SharedStripsTiff(30000, 2, 10, 200000)),
              HasSubstr("30000x30000 pixels take 3433 MiB; the limit is 2047 MiB"));
  EXPECT_THAT(OfPicture("lab.tif", SharedStripsTiff(30000, 8, 10, 200000)),
              HasSubstr("the limit is 2047 MiB"));
}

TEST_F(HostileFile, TiffOfOneStripInAForeignColourModel) {
  // What is converted into, and the strip: neither would fit with the other.
  EXPECT_THAT(OfPicture("lab.tif", SharedStripsTiff(22000, 8, 22000)),
              HasSubstr("of working memory; the limit is 2048 MiB"));
}

TEST_F(HostileFile, ProjectOfMillionsOfValues) {
  std::ofstream(folder_ / "many.json") << MillionsOfObjects();
  EXPECT_EQ(Refusal({"render", folder_ / "many.json", "-o", out_}),
            "kelto: " + (folder_ / "many.json") + ": has more than 250000 values\n");
}

TEST_F(HostileFile, SoundOfOneSampleASecond) {
  const std::string sound = folder_ / "slow.wav";
  WriteBytes(sound, Wav(1, 10000));
  for (const char* film : {"film.mp4", "film.mkv"}) {
    EXPECT_EQ(Refusal({"render", photo_, "-o", folder_ / film, "--frames", "2", "--size", "64x64",
                       "--audio", sound, "--jobs", "1"}),
              "kelto: " + sound +
                  ": its sound has 1 samples per second; the limits are 1000 and 768000\n");
  }
}

TEST_F(HostileFile, AnimationBehindThePicture) {
  const std::string video = folder_ / "large.gif";
  const auto refusal = [&](uint16_t side) {
    WriteBytes(video, TinyGif(side));
    return Refusal({"render", photo_, "-o", out_, "--frames", "2", "--over", video, "--jobs", "1"});
  };
  EXPECT_EQ(refusal(16000), "kelto: " + video +
                                ": cannot be read as a video: its pictures have no size, or more "
                                "than 134 million pixels\n");
  EXPECT_EQ(refusal(8000), "kelto: " + video +
                               ": its pictures have 8000x8000 pixels in a file of 58 bytes; the "
                               "limit is 10000 pixels a byte\n");
}

}  // namespace
}  // namespace kelto::test
