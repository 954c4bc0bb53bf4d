// The way that draws back and comes in again.
#include "motion/fly.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/motion/random_windows.h"

namespace kelto::motion {
namespace {

constexpr int kFlights = 500;

TEST(FlyWay, PassesThePublishedWindow) {
  const FlyWay way({0.30, 0.30, 0.40}, {1.35, 0.85, 0.60}, kRho);
  const Window half = way.At(0.5);
  EXPECT_NEAR(half.x, 0.72, 1e-9);
  EXPECT_NEAR(half.y, 0.52, 1e-9);
  EXPECT_NEAR(half.width, 1.2604761005, 1e-9);
}

TEST(FlyWay, IsPerceivedAtOneSpeedWhenItDrawsBackFreely) {
  Random random(11);
  for (int i = 0; i < kFlights; ++i) {
    const Room room = random.ARoom();
    const FlyWay way(random.WindowIn(room), random.WindowIn(room), kRho);
    const SpeedRange range = SpeedsOf([&](double e) { return way.At(e); }, 400);
    EXPECT_LE(range.most, range.least * 1.01);
    EXPECT_NEAR(range.most, way.Speed(0.5), way.Speed(0.5) * 0.01);
  }
}

TEST(FlyWay, IsNoLongerThanTheStraightWay) {
  Random random(12);
  for (int i = 0; i < kFlights; ++i) {
    const Room room = random.ARoom();
    const Window from = random.WindowIn(room), to = random.WindowIn(room);
    EXPECT_LE(FlyWay(from, to, kRho).Speed(0.5),
              SpeedsOf([&](double e) { return FlyWay(from, to, 0.7).At(e); }, 400).most * 1.01);
  }
}

TEST(FlyWithin, StaysInTheRoomAndMeetsItsEnds) {
  Random random(13);
  int flights = 0;
  for (int i = 0; i < kFlights; ++i) {
    const Room room = random.ARoom();
    const Window from = random.WindowIn(room), to = random.WindowIn(room);
    const auto way = FlyWithin(room, from, to);
    if (!way) continue;
    ++flights;
    for (int step = 0; step <= 100; ++step) {
      EXPECT_LE(Outside(way->At(step / 100.0), room), 1e-8) << "pair " << i;
    }
    EXPECT_EQ(way->At(0.0), from);
    EXPECT_EQ(way->At(1.0), to);
    EXPECT_LT(Apart(way->At(1e-13), from), 1e-9) << "pair " << i;
    EXPECT_LT(Apart(way->At(1 - 1e-13), to), 1e-9) << "pair " << i;
  }
  EXPECT_GT(flights, kFlights / 4);
}

TEST(FlyWithin, DrawsBackAsFarAsTheRoomAllows) {
  // Both windows have 0.3 above them; a free flight would reach 0.68.
  const Room room{-2.0, -0.5, 2.0, 0.5, 1.0, 10.0};
  const Window from{-1.0, 0.0, 0.4}, to{1.0, 0.0, 0.4};
  const auto way = FlyWithin(room, from, to);
  ASSERT_TRUE(way);
  EXPECT_NEAR(way->At(0.5).width, 1.0, 1e-6);
}

TEST(FlyWithin, IsNoWayWhereEveryFlightWouldLeaveTheRoom) {
  // Both windows touch the upper edge.
  const Room room{-2.0, -0.5, 2.0, 0.5, 1.0, 10.0};
  EXPECT_FALSE(FlyWithin(room, {-1.0, -0.4, 0.2}, {1.0, -0.4, 0.2}));
}

TEST(FlyWithin, MayShowAsMuchBesideThePhotoAsOneOfTheViewsDoes) {
  const Room room{-0.5, -0.5, 0.5, 0.5, 1.0, 10.0};
  const Window from{-0.9, 0.0, 1.5}, to{0.9, 0.0, 0.5};
  const auto way = FlyWithin(room, from, to);
  ASSERT_TRUE(way);
  double widest = 0.0;
  for (int step = 0; step <= 100; ++step) widest = std::max(widest, way->At(step / 100.0).width);
  EXPECT_NEAR(widest, 1.5, 1e-6) << "no further above and below than the first view";
}

TEST(FlyWithin, IsNoWayForAZoomOnTheSpot) {
  EXPECT_FALSE(FlyWithin({}, {0.1, 0.1, 1.0}, {0.1, 0.1, 0.25}));
}

}  // namespace
}  // namespace kelto::motion
