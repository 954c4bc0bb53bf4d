// `kelto play` as its user sees it, on a screen of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <stdexcept>

#include "tests/host/command/run.h"
#include "tests/host/player/screen.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;

constexpr int kWidth = 640, kHeight = 360, kBar = 52;
constexpr int kFrames = 101;
constexpr int kTolerance = 9;  // levels: resampling, and two conversions of colour

double Now() {
  using Seconds = std::chrono::duration<double>;
  return Seconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// The number behind "frame ".
int FrameOf(const std::string& title) {
  const size_t at = title.find("frame ");
  return at == title.npos ? -1 : std::atoi(title.c_str() + at + 6);
}

class Playing : public testing::Test {
 protected:
  /// Red runs from left to right, green from top to bottom. The view goes from the left to the
  /// right, so that the red in its middle tells the frame.
  Playing() {
    // What the window system's libraries leave, unloaded by then, could not be told from our own.
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    WritePng(photo_, MakePicture(256, 144, [](int x, int y) {
               return Rgb{uint8_t(x), uint8_t(y * 255 / 143), 128};
             }));
  }

  void Start(const Words& more = {}) {
    Words words{"play", photo_, "--size", "640x360", "--in", "linear", "--out", "linear"};
    const auto preset = [&](const char* option, const std::string& value) {
      if (std::find(more.begin(), more.end(), option) != more.end()) return;
      words.insert(words.end(), {option, value});
    };
    preset("--frames", std::to_string(kFrames));
    preset("--from", "2@-0.25,0");
    preset("--to", "2@0.25,0");
    words.insert(words.end(), more.begin(), more.end());
    player_.emplace(words);
    // Not by the photo's name alone: the window that SDL shows first goes again, for one that can
    // be drawn into. That one tells its frame once something is drawn.
    if (screen_.Find("photo.png - .*frame ")) return;
    player_->Signal(SIGKILL);
    // Thrown, since the rest of the test would only wait for a window that is not there.
    const std::string told = player_->Wait().err;
    player_.reset();
    throw std::runtime_error("no window came: " + told);
  }
  void ExpectQuits(const char* key) {
    screen_.Press(key);
    const Outcome outcome = player_->Wait();
    player_.reset();
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
  }
  void TearDown() override {
    if (!player_) return;
    player_->Signal(SIGKILL);
    player_->Wait();
  }

  /// A frame that the title told of, and between which times it was read there, in seconds.
  struct Sight {
    int frame;
    double earliest, latest;
  };
  /// Waits for a frame after `frame`; the last one seen in any case.
  Sight SightAfter(int frame) const {
    Sight sight{-1, Now(), 0.0};
    screen_.WaitForTitle([&](const std::string& title) {
      sight.frame = FrameOf(title);
      sight.latest = Now();
      const bool after = sight.frame > frame;
      if (!after) sight.earliest = sight.latest;
      return after;
    });
    return sight;
  }

  static Rgb Middle(const Picture& picture) { return picture.At(kWidth / 2, kHeight / 2); }
  static Rgb MiddleOfFrame(int frame) { return {uint8_t(64 + 128 * frame / 100), 128, 128}; }
  void ExpectShows(int frame) {
    EXPECT_THAT(screen_.WaitForTitle("frame " + std::to_string(frame) + " of"),
                HasSubstr("frame " + std::to_string(frame) + " of"));
    const Rgb middle = Middle(screen_.Look());
    EXPECT_LE(Distance(middle, MiddleOfFrame(frame)), kTolerance) << ToString(middle);
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png";
  Screen screen_;
  std::optional<Command> player_;
};

TEST_F(Playing, KeepsTimeAndStopsAtTheLastFrame) {
  Start();
  const Sight from = SightAfter(2), to = SightAfter(70);
  const double seconds = (to.frame - from.frame) / 25.0;
  // A busy machine may start the program that reads the title late; that needs no allowance. This
  // one is for the player, which has to wait for the processor, too.
  constexpr double kLag = 1.0;
  EXPECT_GE(seconds, to.earliest - from.latest - kLag);
  EXPECT_LE(seconds, to.latest - from.earliest + kLag);
  screen_.WaitForTitle("paused");
  ExpectShows(kFrames - 1);
  ExpectQuits("q");
}

TEST_F(Playing, ShowsTheBackgroundThroughATransparentPhoto) {
  ASSERT_EQ(
      RunShell("ffmpeg -nostdin -v error -f lavfi -i color=white@0.5:size=256x144,format=rgba "
               "-frames:v 1 -y " +
               photo_)
          .code,
      0);
  Start({"--background", "#ff0000", "--paused"});
  screen_.WaitForTitle("paused");
  const Rgb middle = Middle(screen_.Look());
  EXPECT_LE(Distance(middle, {255, 128, 128}), kTolerance) << ToString(middle);
  ExpectQuits("q");
}

TEST_F(Playing, PausesAndGoesOn) {
  Start({"--loop"});
  screen_.WaitForTitle([](const auto& title) { return FrameOf(title) > 10; });
  screen_.Press("space");
  const std::string paused = screen_.WaitForTitle("paused");
  EXPECT_THAT(paused, HasSubstr("full quality, paused"));
  const Picture first = screen_.Look(), second = screen_.Look();
  EXPECT_EQ(first.bytes, second.bytes);
  EXPECT_LE(Distance(Middle(first), MiddleOfFrame(FrameOf(paused))), kTolerance);
  screen_.Press("space");
  EXPECT_THAT(screen_.WaitForTitle("fps"), HasSubstr("fps"));
  EXPECT_NE(screen_.Look().bytes, first.bytes);
  ExpectQuits("Escape");
}

TEST_F(Playing, StepsAndSeeksToFrames) {
  Start({"--paused"});
  ExpectShows(0);
  screen_.Press("period period period");
  ExpectShows(3);
  screen_.Press("comma");
  ExpectShows(2);
  screen_.Press("Right");
  ExpectShows(27);
  screen_.Press("End");
  ExpectShows(100);
  screen_.Press("Left Left");
  ExpectShows(50);
  screen_.Press("Home");
  ExpectShows(0);
  ExpectQuits("q");
}

TEST_F(Playing, ShowsTheVideosFrameBehindEachOfItsOwn) {
  const auto levelOf = [](int frame) { return frame * 37 % 200; };
  const Outcome made = RunShell(
      "ffmpeg -nostdin -v error -f lavfi -i color=gray:size=640x360:rate=25:duration=4.04,"
      "geq=lum='16+mod(N*37\\,200)':cb=128:cr=128 -c:v libx264 -qp 2 -g 40 -bf 2 -y " +
      (folder_ / "video.ts"));
  ASSERT_EQ(made.code, 0) << made.err;
  Start({"--paused", "--over", folder_ / "video.ts", "--from", "0.3", "--to", "0.3"});
  const auto expectBehind = [&](int frame) {
    const std::string title = "frame " + std::to_string(frame) + " of 101";
    EXPECT_THAT(screen_.WaitForTitle(title), HasSubstr(title));
    const auto level = uint8_t(std::lround(levelOf(frame) * 255 / 219.0));
    const Rgb corner = screen_.Look().At(8, 8);
    EXPECT_LE(Distance(corner, {level, level, level}), kTolerance) << ToString(corner);
  };
  expectBehind(0);
  screen_.Press("period period period");
  expectBehind(3);
  screen_.Press("comma");
  expectBehind(2);
  screen_.Press("End");
  expectBehind(100);
  screen_.Press("comma");
  expectBehind(99);
  screen_.Press("Left Left");
  expectBehind(49);
  screen_.Press("Home");
  expectBehind(0);
  ExpectQuits("q");
}

TEST_F(Playing, TheBarSeeksWhereItIsClickedAndDragged) {
  Start({"--paused"});
  const int y = kHeight + kBar / 3;
  screen_.Click(kWidth / 2, y);
  ExpectShows(50);
  screen_.Drag(kWidth / 2, y, kWidth - 16, y);
  ExpectShows(100);
  screen_.Drag(kWidth - 16, y, 5, y - 200);  // once begun, a drag may leave the bar
  ExpectShows(0);
  screen_.Click(kWidth / 2, kHeight / 2);  // the picture is no bar
  ExpectShows(0);
  ExpectQuits("q");
}

TEST_F(Playing, SwitchesBetweenTheTwoDisplays) {
  Start({"--paused"});
  screen_.WaitForTitle("Display: Target");
  const Picture target = screen_.Look();
  // The view's left edge is the photo's: half of the photo shows.
  EXPECT_LE(Distance(target.At(6, kHeight / 2), {1, 128, 128}), kTolerance);
  EXPECT_LE(Distance(target.At(kWidth - 6, kHeight / 2), {127, 128, 128}), kTolerance);
  screen_.Press("d");
  EXPECT_THAT(screen_.WaitForTitle("Display: Source"), HasSubstr("Display: Source"));
  const Picture source = screen_.Look();
  EXPECT_LE(Distance(source.At(kWidth - 20, 20), {247, 14, 128}), kTolerance)
      << ToString(source.At(kWidth - 20, 20));
  EXPECT_LE(Distance(source.At(kWidth / 4 * 3, kHeight / 2), {192, 128, 128}), kTolerance);
  screen_.Press("d");
  screen_.WaitForTitle("Display: Target");
  EXPECT_EQ(screen_.Look().bytes, target.bytes);
  ExpectQuits("q");
}

TEST_F(Playing, TellsTheKeysOverThePicture) {
  Start({"--paused"});
  const Picture before = screen_.Look();
  screen_.Press("h");
  Picture help = screen_.Look();
  for (int i = 0; i < 50 && help.bytes == before.bytes; ++i) help = screen_.Look();
  EXPECT_NE(Distance(Middle(help), Middle(before)), 0);
  EXPECT_EQ(Distance(help.At(5, 5), before.At(5, 5)), 0);
  screen_.Press("h");
  Picture after = screen_.Look();
  for (int i = 0; i < 50 && after.bytes != before.bytes; ++i) after = screen_.Look();
  EXPECT_EQ(after.bytes, before.bytes);
  ExpectQuits("q");
}

TEST_F(Playing, ShowsTrueColours) {
  const auto bars = BarColours();
  WritePng(photo_, MakePicture(256, 144, [&](int x, int) { return bars[size_t(x) / 32 % 8]; }));
  Start({"--paused", "--from", "1", "--to", "1"});
  screen_.WaitForTitle("frame 0");
  const Picture shown = screen_.Look();
  for (int bar = 0; bar < 8; ++bar) {
    const Rgb colour = shown.At(bar * kWidth / 8 + kWidth / 16, 100);
    EXPECT_LE(Distance(colour, bars[size_t(bar)]), 4) << bar << ": " << ToString(colour);
  }
  ExpectQuits("q");
}

TEST_F(Playing, DrawsAtHalfQualityWhereItCannotKeepUp) {
  // A thousand frames a second no machine draws with this filter.
  Start({"--loop", "--fps", "1000", "--frames", "100000", "--filter", "ultra"});
  EXPECT_THAT(screen_.WaitForTitle("half quality"), HasSubstr("half quality"));
  EXPECT_THAT(screen_.WaitForTitle([](const std::string& title) {
    return title.find(" 0 dropped") == title.npos && title.find(" dropped") != title.npos;
  }),
              testing::Not(HasSubstr(" 0 dropped")));
  screen_.Press("space");
  EXPECT_THAT(screen_.WaitForTitle("paused"), HasSubstr("full quality, paused"));
  ExpectQuits("q");
}

TEST_F(Playing, EndsAsTheSignalSaysOnCtrlC) {
  Start();
  player_->Signal(SIGINT);
  EXPECT_EQ(player_->Wait().signal, SIGINT);
  player_.reset();
}

TEST(PlayingWithoutAScreen, IsAClearErrorOfOneLine) {
  TempFolder folder;
  const std::string photo = folder / "photo.png";
  WritePng(photo, MakePicture(64, 36, [](int, int) { return Rgb{1, 2, 3}; }));
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  const Outcome outcome = RunKelto({"play", photo});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("playing needs a screen"));
}

}  // namespace
}  // namespace kelto::test
