// The player's clock, on a clock of the test's own.
#include "host/playback/playback.h"

#include <gtest/gtest.h>

namespace kelto::host {
namespace {

constexpr FrameRate kRate{25, 1};

TEST(Playback, BeginsPausedAtTheFirstFrame) {
  Playback playback(100, kRate);
  EXPECT_FALSE(playback.Playing());
  EXPECT_EQ(playback.FrameAt(0.0), 0);
  EXPECT_EQ(playback.FrameAt(50.0), 0);
}

TEST(Playback, ShowsEachFrameForItsTime) {
  Playback playback(100, kRate);
  playback.Play(7.0);
  EXPECT_EQ(playback.FrameAt(7.0), 0);
  EXPECT_EQ(playback.FrameAt(7.039), 0);
  EXPECT_EQ(playback.FrameAt(7.04), 1);
  EXPECT_EQ(playback.FrameAt(7.4), 10);
  EXPECT_NEAR(playback.NextDue(7.39), 7.40, 1e-9);
  EXPECT_NEAR(playback.NextDue(7.40), 7.44, 1e-9);
}

TEST(Playback, SkipsFramesThatWereNotReadyInTime) {
  Playback playback(100, kRate);
  playback.Play(0.0);
  EXPECT_EQ(playback.FrameAt(0.0), 0);
  EXPECT_EQ(playback.FrameAt(0.5), 12) << "eleven frames late";
}

TEST(Playback, KeepsTimeAtRatesThatAreNoWholeNumber) {
  Playback playback(200000, {30000, 1001});
  playback.Play(0.0);
  EXPECT_EQ(playback.FrameAt(3600.0), 107892);  // an hour of 29.97
}

TEST(Playback, PausesWhereItIsAndGoesOnFromThere) {
  Playback playback(100, kRate);
  playback.Play(0.0);
  playback.Pause(0.41);
  EXPECT_EQ(playback.FrameAt(9.0), 10);
  playback.Play(9.0);
  EXPECT_EQ(playback.FrameAt(9.0), 10);
  EXPECT_EQ(playback.FrameAt(9.04), 11);
}

TEST(Playback, PlayingOnDoesNotStartOver) {
  Playback playback(100, kRate);
  playback.Play(0.0);
  playback.Play(0.4);
  EXPECT_EQ(playback.FrameAt(0.4), 10);
}

TEST(Playback, StopsAfterTheLastFrameHasHadItsTime) {
  Playback playback(10, kRate);
  playback.Play(0.0);
  EXPECT_EQ(playback.FrameAt(0.399), 9);
  EXPECT_TRUE(playback.Playing());
  EXPECT_EQ(playback.FrameAt(0.401), 9);
  EXPECT_FALSE(playback.Playing());
  playback.Play(1.0);
  EXPECT_EQ(playback.FrameAt(1.0), 0) << "play at the end starts over";
}

TEST(Playback, LoopsWhenAskedTo) {
  Playback playback(10, kRate, true);
  playback.Play(0.0);
  EXPECT_EQ(playback.FrameAt(0.39), 9);
  EXPECT_EQ(playback.FrameAt(0.4), 0);
  EXPECT_EQ(playback.FrameAt(4.04), 1);
  EXPECT_TRUE(playback.Playing());
}

TEST(Playback, SeeksWithinTheFilmAndPlaysOn) {
  Playback playback(100, kRate);
  playback.Seek(50, 1.0);
  EXPECT_EQ(playback.FrameAt(2.0), 50);
  playback.Play(2.0);
  playback.Seek(20, 3.0);
  EXPECT_EQ(playback.FrameAt(3.04), 21);
  playback.Seek(1000, 4.0);
  EXPECT_EQ(playback.FrameAt(4.0), 99);
  playback.Seek(-5, 5.0);
  EXPECT_EQ(playback.FrameAt(5.0), 0);
}

TEST(Playback, StepsPauseAndStayWithinTheFilm) {
  Playback playback(100, kRate);
  playback.Play(0.0);
  playback.Step(1, 0.4);
  EXPECT_FALSE(playback.Playing());
  EXPECT_EQ(playback.FrameAt(9.0), 11);
  playback.Step(-1, 9.0);
  EXPECT_EQ(playback.FrameAt(9.0), 10);
  playback.Step(-50, 9.0);
  EXPECT_EQ(playback.FrameAt(9.0), 0);
  playback.Step(500, 9.0);
  EXPECT_EQ(playback.FrameAt(9.0), 99);
}

TEST(Playback, AFilmOfOneFrameShowsIt) {
  Playback playback(1, kRate);
  playback.Play(0.0);
  EXPECT_EQ(playback.FrameAt(0.0), 0);
  EXPECT_EQ(playback.FrameAt(1.0), 0);
  EXPECT_FALSE(playback.Playing());
}

}  // namespace
}  // namespace kelto::host
