// Shows that are cut on the beats of their music.
#include "host/jobs/beats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>

namespace kelto::host {
namespace {

using testing::ElementsAre;

Beats Every(double seconds, int count) {
  Beats beats;
  for (int i = 1; i <= count; ++i) beats.seconds.push_back(i * seconds);
  return beats;
}

TEST(BeatTempo, IsTheUsualOneWhereABeatIsMissed) {
  Beats beats = Every(0.5, 20);
  beats.seconds.erase(beats.seconds.begin() + 7);
  EXPECT_NEAR(beats.Tempo(), 120.0, 1e-9);
  EXPECT_EQ(Every(0.5, 1).Tempo(), 0.0);
  EXPECT_EQ(TextOf(Every(0.5, 20)), "20 beats, 120.0 a minute");
}

TEST(TimesOnBeats, MoveCutsToTheNearestBeat) {
  // At 10 fps, beats every 8 frames: cuts at 10, 20 and 30 go to 8, 16 and 32.
  EXPECT_THAT(TimesOnBeats({10, 10, 10, 10}, {0, 0, 0}, 0, Every(0.8, 40), 10),
              ElementsAre(8, 8, 16, 8));
}

TEST(TimesOnBeats, KeepTheShowsLengthAndPutTheMiddleOfEveryFadeOnABeat) {
  std::mt19937 random(3);
  const auto whole = [&](int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
  };
  for (int round = 0; round < 200; ++round) {
    std::vector<int32_t> times, fades;
    const int count = whole(1, 12), begin = whole(0, 1) * 90;
    for (int i = 0; i < count; ++i) times.push_back(whole(60, 200));
    for (int i = 0; i + 1 < count; ++i) fades.push_back(whole(0, 1) * whole(2, 25));
    const int32_t length = std::accumulate(times.begin(), times.end(), 0) -
                           std::accumulate(fades.begin(), fades.end(), 0);
    const double step = whole(25, 70) / 100.0;
    const Beats beats = Every(step, static_cast<int>((begin + length) / 25.0 / step) + 1);
    const std::vector<int32_t> onBeats = TimesOnBeats(times, fades, begin, beats, 25);
    ASSERT_EQ(onBeats.size(), times.size());
    EXPECT_EQ(std::accumulate(onBeats.begin(), onBeats.end(), 0) -
                  std::accumulate(fades.begin(), fades.end(), 0),
              length);
    int32_t at = begin;
    for (size_t i = 0; i < fades.size(); ++i) {
      EXPECT_GT(onBeats[i], (i > 0 ? fades[i - 1] : 0) + fades[i]) << "fades do not meet";
      at += onBeats[i] - fades[i];
      const double beat = (at + fades[i] / 2) / 25.0 / step;
      EXPECT_NEAR(beat, std::round(beat), 0.5 / 25.0 / step + 1e-9) << "within half a frame";
    }
  }
}

TEST(TimesOnBeats, StayAsTheyAreWhereTheMusicIsOver) {
  EXPECT_THAT(TimesOnBeats({50, 50, 50}, {0, 0}, 0, Beats{{0.5}}, 25), ElementsAre(50, 50, 50));
  EXPECT_THAT(TimesOnBeats({5, 5}, {2}, 0, Beats{}, 25), ElementsAre(5, 5));
}

}  // namespace
}  // namespace kelto::host
