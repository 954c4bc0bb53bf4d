// Films described by words: how large, how good, how quickly made, how they begin and end.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/host/command/run.h"
#include "tests/host/support/film_reader.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;

class FilmWords : public testing::Test {
 protected:
  FilmWords() {
    // Fine enough that qualities differ.
    WritePng(photo_, MakePicture(320, 240, [](int x, int y) {
               return Rgb{uint8_t(x * 37 ^ y * 11), uint8_t(x * y), uint8_t(x + 3 * y)};
             }));
  }
  /// Bytes of a film with these options.
  std::string Film(const std::string& name, const Words& more) {
    const Outcome outcome = Render(photo_, folder_ / name, more);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return BytesOf(folder_ / name);
  }
  std::string FaultOf(const std::string& name, const Words& more) {
    const Outcome outcome = Render(photo_, folder_ / name, more);
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    return outcome.err;
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png";
};

TEST_F(FilmWords, SizesHaveNames) {
  EXPECT_EQ(Film("f.yuyv", {"--size", "story", "--frames", "1"}).size(), size_t{2} * 1080 * 1920);
  EXPECT_THAT(FaultOf("f.yuyv", {"--size", "huge"}),
              HasSubstr("one of 480p, 720p, 1080p, 1440p, 4k, square, story, portrait"));
}

TEST_F(FilmWords, QualitiesHaveNamesAndTheCodecsNumbers) {
  const Words size{"--size", "320x240"};
  const auto bytes = [&](const std::string& name, const std::string& quality) {
    Words words = size;
    if (!quality.empty()) words.insert(words.end(), {"--quality", quality});
    return Film(name, words);
  };
  for (const char* name : {"f.mp4", "f.webm"}) {
    size_t last = 0;
    for (const char* quality : {"low", "medium", "high", "best"}) {
      const size_t count = bytes(name, quality).size();
      EXPECT_GT(count, last) << name << " " << quality;
      last = count;
    }
  }
  EXPECT_EQ(bytes("f.mp4", "high"), bytes("f.mp4", ""));
  EXPECT_EQ(bytes("f.mp4", "18"), bytes("f.mp4", ""));
  EXPECT_THAT(FaultOf("f.mp4", {"--quality", "52"}),
              HasSubstr("--quality 52: choose one of low, medium, high, best, or h264's own number "
                        "from 0, the best, to 51"));
  EXPECT_THAT(FaultOf("f.mov", {"--codec", "prores", "--quality", "low"}),
              HasSubstr("--quality low: ProRes 4:2:2 HQ has no choice of qualities"));
  EXPECT_THAT(FaultOf("f.y4m", {"--quality", "low"}), HasSubstr("y4m films have no codec"));
}

TEST_F(FilmWords, SpeedsHaveNames) {
  // Encoders leave memory behind, and the sanitizers' list of others' leaks lies outside the
  // sandbox.
  setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
  const std::string usual = Film("f.mp4", {});
  EXPECT_EQ(Film("f.mp4", {"--speed", "medium"}), usual);
  for (const char* speed : {"slow", "fast", "fastest"}) {
    EXPECT_NE(Film("f.mp4", {"--speed", speed}), usual) << speed;
  }
  // Every encoder knows what it is asked for.
  for (const char* codec : {"h265", "vp9", "av1"}) {
    for (const char* speed : {"slow", "fast", "fastest"}) {
      Film("f.mkv", {"--codec", codec, "--speed", speed, "--quality", "low"});
      EXPECT_EQ(ReadFilm(folder_ / "f.mkv").frames.size(), 3u) << codec << " " << speed;
    }
  }
  EXPECT_THAT(FaultOf("f.mp4", {"--speed", "warp"}),
              HasSubstr("--speed warp: choose one of slow, medium, fast, fastest"));
  EXPECT_THAT(FaultOf("f.mkv", {"--codec", "ffv1", "--speed", "fast"}),
              HasSubstr("--speed fast: FFV1, lossless 4:2:2, or RGB of 16 bits has one speed"));
}

TEST_F(FilmWords, OneWordEasesBothEnds) {
  const auto film = [&](Words words) {
    words.insert(words.end(), {"--move", "right", "--frames", "9"});
    return Film("f.yuyv", words);
  };
  EXPECT_EQ(film({"--ease", "smooth"}), film({}));
  EXPECT_EQ(film({"--ease", "linear"}), film({"--in", "linear", "--out", "linear"}));
  EXPECT_EQ(film({"--ease", "in"}), film({"--in", "linear", "--out", "ease"}));
  EXPECT_EQ(film({"--ease", "out"}), film({"--in", "ease", "--out", "linear"}));
  EXPECT_NE(film({"--ease", "in"}), film({"--ease", "out"}));
  EXPECT_THAT(FaultOf("f.yuyv", {"--ease", "bounce"}),
              HasSubstr("--ease bounce: choose one of smooth, linear, in, out"));
  EXPECT_THAT(FaultOf("f.yuyv", {"--ease", "in", "--in", "ease"}), HasSubstr("--ease"));
}

TEST_F(FilmWords, ALoopComesBackToItsBeginningWithoutASeam) {
  WritePng(photo_, MakePicture(1280, 640, [](int x, int) { return Rgb{uint8_t(x / 5), 0, 0}; }));
  const auto film = [&](const Words& more) {
    Words words{"--loop", "--size", "64x64", "--frames", "20", "--move", "right"};
    words.insert(words.end(), more.begin(), more.end());
    return Film("f.bgra", words);
  };
  constexpr size_t kFrame = size_t{4} * 64 * 64;
  const auto level = [&](const std::string& bytes, size_t frame) {
    double sum = 0;
    for (size_t at = 2; at < kFrame; at += 4) sum += uint8_t(bytes[frame * kFrame + at]);
    return sum / (64 * 64);
  };
  const std::string even = film({"--ease", "linear"});
  ASSERT_EQ(even.size(), 20 * kFrame);
  const double step = level(even, 1) - level(even, 0);
  EXPECT_GT(step, 5);
  // There in half of the frames, and back in the other half: the step from the last frame to the
  // first is like any other.
  for (size_t i = 0; i < 20; ++i) {
    EXPECT_NEAR(std::abs(level(even, (i + 1) % 20) - level(even, i)), step, 1.5) << i;
  }
  EXPECT_EQ(even.substr(kFrame, kFrame), even.substr(19 * kFrame, kFrame));
  const std::string soft = film({});
  EXPECT_LT(std::abs(level(soft, 19) - level(soft, 0)), step / 2) << "eased where it turns";
  // Part of it is that part; a project may loop, too, where it has a list of views.
  EXPECT_EQ(Film("part.bgra", {"--loop", "--size", "64x64", "--seconds", "0.8", "--move", "right",
                               "--frames", "5..9"}),
            soft.substr(5 * kFrame, 4 * kFrame));
}

TEST_F(FilmWords, EncodersInHardwareAreNeverReplacedInSilence) {
  EXPECT_EQ(Film("f.mp4", {"--encoder", "software"}), Film("f.mp4", {}));
  for (const char* hardware : {"nvenc", "qsv"}) {
    for (const char* codec : {"h264", "h265"}) {
      const std::string name = std::string(hardware) + codec + ".mp4";
      const Outcome outcome =
          Render(photo_, folder_ / name,
                 {"--size", "320x240", "--move", "hold", "--encoder", hardware, "--codec", codec});
      if (outcome.code == 0) {  // a machine that has it
        EXPECT_EQ(ReadFilm(folder_ / name).frames.size(), 3u);
        continue;
      }
      EXPECT_EQ(outcome.code, 1) << outcome.err;
      EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
      EXPECT_THAT(outcome.err, HasSubstr(name));
      EXPECT_THAT(outcome.err, HasSubstr("; use --encoder software"));
      EXPECT_THAT(NamesIn(folder_), testing::Not(testing::Contains(name)));
    }
  }
  EXPECT_THAT(FaultOf("f.mp4", {"--encoder", "vaapi"}),
              HasSubstr("--encoder vaapi: is not supported"));
  EXPECT_THAT(FaultOf("f.webm", {"--encoder", "qsv"}), HasSubstr("use --codec h264, h265"));
}

}  // namespace
}  // namespace kelto::test
