// The straight way: an even rate of zoom, and what is approached stays in view.
#include "motion/steady.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/motion/random_windows.h"

namespace kelto::motion {
namespace {

constexpr int kPairs = 3000;

TEST(SteadyWay, GoesFromZoom1To8AsReckonedByHand) {
  const SteadyWay way({0.0, 0.0, 1.0}, {0.4, 0.0, 1.0 / 8});
  const double expected[][3] = {
      {0.25, 1.681793, 0.185324}, {0.5, 2.828427, 0.295518}, {0.75, 4.756828, 0.361040}};
  for (const auto& [e, zoom, x] : expected) {
    EXPECT_NEAR(1 / way.At(e).width, zoom, 5e-7) << "at " << e;
    EXPECT_NEAR(way.At(e).x, x, 5e-7) << "at " << e;
  }
}

TEST(SteadyWay, MeetsBothEndsExactly) {
  Random random(1);
  for (int i = 0; i < kPairs; ++i) {
    const Room room = random.ARoom();
    const Window from = random.WindowIn(room), to = random.WindowIn(room);
    const SteadyWay way(from, to);
    EXPECT_EQ(way.At(0.0), from);
    EXPECT_EQ(way.At(1.0), to);
    EXPECT_LT(Apart(way.At(1 - 1e-12), to), 1e-9);
  }
}

TEST(SteadyWay, IsPerceivedAtOneSpeedWhichItKnows) {
  Random random(2);
  for (int i = 0; i < kPairs; ++i) {
    const Room room = random.ARoom();
    const SteadyWay way(random.WindowIn(room), random.WindowIn(room));
    const SpeedRange range = SpeedsOf([&](double e) { return way.At(e); }, 100);
    EXPECT_LE(range.most, range.least * 1.01);
    EXPECT_NEAR(range.most, way.Speed(0.5), way.Speed(0.5) * 1e-3);
  }
}

TEST(SteadyWay, WhatItLeadsToNeverMovesAwayFromWhereItEnds) {
  Random random(3);
  for (int i = 0; i < kPairs; ++i) {
    const Room room = random.ARoom();
    const Window from = random.WindowIn(room), to = random.WindowIn(room);
    const SteadyWay way(from, to);
    double last = 1e300;
    for (int step = 0; step <= 100; ++step) {
      const Window window = way.At(step / 100.0);
      // From the middle of the frame, in frame widths; there it ends.
      const double away = std::hypot(to.x - window.x, to.y - window.y) / window.width;
      EXPECT_LE(away, last * (1 + 1e-12) + 1e-9) << "pair " << i;
      last = away;
    }
  }
}

TEST(SteadyWay, ShowsNothingThatLiesOutsideWhatItsEndsShow) {
  Random random(4);
  for (int i = 0; i < kPairs; ++i) {
    const Room room = random.ARoom();
    const SteadyWay way(random.WindowIn(room), random.WindowIn(room));
    for (int step = 0; step <= 50; ++step) {
      EXPECT_LE(Outside(way.At(step / 50.0), room), 1e-12) << "pair " << i;
    }
  }
}

TEST(SteadyWay, ChangesSmoothlyFromZoomingToPanningAlone) {
  // On either side of the growth below which the centre goes evenly.
  const Window from{0.1, 0.2, 0.5};
  const SteadyWay pan(from, {0.4, 0.1, 0.5 * std::exp(0.9e-6)});
  const SteadyWay zoom(from, {0.4, 0.1, 0.5 * std::exp(1.1e-6)});
  EXPECT_LT(Apart(pan.At(0.3), zoom.At(0.3)), 1e-6);
  EXPECT_NEAR(pan.Speed(0), zoom.Speed(0), 1e-5);
}

}  // namespace
}  // namespace kelto::motion
