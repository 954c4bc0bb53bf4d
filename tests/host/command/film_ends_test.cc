// How films begin and end: out of a colour and into it, with sound that fades or goes on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/host/command/run.h"
#include "tests/host/support/sounds.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;

constexpr size_t kFrameBytes = size_t{4} * 96 * 64;

class FilmEnds : public testing::Test {
 protected:
  FilmEnds() {
    WritePng(photo_, MakePicture(96, 64, [](int, int) { return Rgb{200, 100, 50}; }));
  }
  std::string Film(const std::string& name, const Words& more) {
    const Outcome outcome = Render(photo_, folder_ / name, more);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    said_ = outcome.err;
    return BytesOf(folder_ / name);
  }
  static Rgb Middle(const std::string& film, size_t frame) {
    const size_t at = frame * kFrameBytes + kFrameBytes / 2 + 2 * 96;
    return {uint8_t(film[at + 2]), uint8_t(film[at + 1]), uint8_t(film[at])};
  }
  std::string Sound(double seconds) {
    WriteWav(folder_ / "tone.wav", seconds, 48000, 2,
             [](int, double at) { return 0.5 * std::sin(2764.6 * at); });
    return folder_ / "tone.wav";
  }
  /// The largest level in a tenth of a second around a time.
  static double Loudness(const DecodedSound& sound, double seconds) {
    double most = 0;
    for (double at = seconds - 0.05; at < seconds + 0.05; at += 1.0 / sound.rate) {
      most = std::max(most, std::abs(sound.LevelAt(at)));
    }
    return most;
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png";
  std::string said_;
};

TEST_F(FilmEnds, ComeOutOfAColourAndGoIntoIt) {
  const std::string film = Film("f.bgra", {"--frames", "12", "--fade-in", "0.2", "--fade-out",
                                           "0.12", "--fade-colour", "#0000ff", "--move", "hold"});
  ASSERT_EQ(film.size(), 12 * kFrameBytes);
  const Rgb photo{200, 100, 50}, blue{0, 0, 255};
  EXPECT_EQ(Distance(Middle(film, 0), blue), 0) << "the colour alone at the very beginning";
  for (size_t i = 1; i < 5; ++i) {
    EXPECT_LT(Middle(film, i).b, Middle(film, i - 1).b) << i;
    EXPECT_GT(Middle(film, i).r, Middle(film, i - 1).r) << i;
  }
  for (size_t i = 5; i < 9; ++i) EXPECT_LE(Distance(Middle(film, i), photo), 4) << i;
  EXPECT_LT(Middle(film, 9).r, Middle(film, 8).r);
  EXPECT_EQ(Distance(Middle(film, 11), blue), 0);
}

TEST_F(FilmEnds, AreBlackIn422Too) {
  const std::string film = Film("f.yuyv", {"--frames", "5", "--fade-out", "0.08"});
  const std::string black = film.substr(film.size() - 8);
  EXPECT_EQ(black, std::string("\x10\x80\x10\x80\x10\x80\x10\x80", 8));
}

TEST_F(FilmEnds, ThatDoNotFitAreRefused) {
  const Outcome outcome = Render(photo_, folder_ / "f.bgra", {"--frames", "5", "--fade-in", "1"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.err,
              HasSubstr("--fade-in and --fade-out take 25 frames together, and the film has 5"));
  EXPECT_THAT(Render(photo_, folder_ / "f.bgra", {"--fade-in", "0.04", "--frames", "0..2"}).err,
              HasSubstr("are for whole films"));
}

TEST_F(FilmEnds, HaveSoundThatFadesOut) {
  for (const char* name : {"f.mp4", "f.webm"}) {
    Film(name, {"--seconds", "3", "--audio", Sound(4), "--audio-fade", "1"});
    EXPECT_EQ(said_, "") << "a cut that fades is meant";
    const DecodedSound sound = ReadSound(folder_ / name);
    EXPECT_NEAR(Loudness(sound, 1.0), 0.5, 0.08) << name;
    EXPECT_NEAR(Loudness(sound, 2.5), 0.275, 0.08) << name;
    EXPECT_LT(Loudness(sound, 2.9), 0.12) << name;
  }
}

TEST_F(FilmEnds, HaveSoundThatBeginsAgain) {
  Film("f.mp4", {"--seconds", "3", "--audio", Sound(0.8), "--audio-loop"});
  EXPECT_EQ(said_, "");
  const DecodedSound sound = ReadSound(folder_ / "f.mp4");
  for (const double at : {0.4, 0.85, 1.6, 2.4, 2.9}) {
    EXPECT_NEAR(Loudness(sound, at), 0.5, 0.1) << at;
  }
}

TEST_F(FilmEnds, SayWhatIsCutOfTheSound) {
  const std::string tone = Sound(4);
  Film("f.mkv", {"--seconds", "2", "--audio", tone, "--strict"});
  EXPECT_EQ(said_, "kelto: " + tone +
                       ": its sound is cut after 2.00 of 4.00 seconds; --audio-fade 2 fades it "
                       "out\n");
  EXPECT_THAT(Render(photo_, folder_ / "g.mp4", {"--audio-loop"}).err,
              HasSubstr("--audio-loop and --audio-fade are for films with sound"));
}

TEST_F(FilmEnds, OfALoopMeetInItsProjectToo) {
  WritePng(photo_, MakePicture(192, 128, [](int x, int y) {
             return Rgb{uint8_t(x), uint8_t(y), 0};
           }));
  const std::string film = Film(
      "f.bgra", {"--frames", "10", "--to", "2", "--loop", "--save-project", folder_ / "p.json"});
  ASSERT_EQ(RunKelto({"render", folder_ / "p.json", "-o", folder_ / "g.bgra"}).err, "");
  EXPECT_EQ(BytesOf(folder_ / "g.bgra"), film);
  const std::string first = film.substr(0, kFrameBytes);
  EXPECT_NE(film.substr(9 * kFrameBytes), first) << "the first view is not seen twice";
}

}  // namespace
}  // namespace kelto::test
