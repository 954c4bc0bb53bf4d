#include "keyframes/motion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/keyframes/keys.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using nlohmann::json;
using test::Keys;

Keys KeysOf(const json& c) {
  Keys keys;
  for (const auto& key : c["position"]) keys.AddPosition(key[0], key[1], key[2]);
  for (const auto& key : c["size"]) keys.AddZoom(key[0], key[1]);
  for (const auto& key : c["invelocity"]) keys.in->push_back({key[0], key[1]});
  for (const auto& key : c["outvelocity"]) keys.out->push_back({key[0], key[1]});
  keys.pathType = c["pathType"];
  keys.totalFrames = c["totalFrames"];
  return keys;
}

TEST(Motion, AgreesWithReferenceFrames) {
  int compared = 0;
  for (const auto& c : test::Vectors()["motion"]) {
    const Motion motion(KeysOf(c));
    for (const auto& f : c["frames"]) {
      if (f["fragile"]) continue;
      const View view = motion.At(f["t"], View{});
      EXPECT_NEAR(view.zoom, f["zoom"].get<double>(), 1e-7) << f;
      EXPECT_NEAR(view.centreX, f["x"].get<double>(), 1e-7) << f;
      EXPECT_NEAR(view.centreY, f["y"].get<double>(), 1e-7) << f;
      ++compared;
    }
  }
  EXPECT_GT(compared, 200);
}

TEST(Motion, AgreesWithReferenceTablesAndTimes) {
  for (const auto& c : test::Vectors()["motion"]) {
    const Motion motion(KeysOf(c));
    const std::vector<ArcEntry>& table = motion.Table().Entries();
    ASSERT_EQ(table.size(), c["table"].size());
    for (size_t i = 0; i < table.size(); ++i) {
      EXPECT_NEAR(table[i].keyTime, c["table"][i][0].get<double>(), 1e-7);
      EXPECT_NEAR(table[i].travelTime, c["table"][i][1].get<double>(), 1e-7);
    }
    for (const auto& r : c["remap"]) {
      const bool fragile = r[3];
      if (fragile) continue;
      EXPECT_NEAR(motion.Easing().At(r[0]).time, r[1].get<double>(), 1e-7) << r;
      EXPECT_NEAR(motion.PathTime(r[0]), r[2].get<double>(), 1e-7) << r;
    }
  }
}

/// Three keys on a line.
Keys ThreeKeys() {
  Keys keys;
  keys.totalFrames = 101;
  for (const double t : {0.0, 0.5, 1.0}) {
    keys.AddPosition(t, t, -t);
    keys.AddVelocities(t, kVelocityLinear, kVelocityLinear);
  }
  return keys;
}

TEST(Motion, LinearVelocitiesMoveEvenly) {
  const Motion motion(ThreeKeys());
  for (const double t : {0.0, 0.1, 0.49, 0.5, 0.77}) {
    EXPECT_NEAR(motion.CentreAt(t).x, t, 1e-9);
    EXPECT_NEAR(motion.CentreAt(t).y, -t, 1e-9);
  }
}

TEST(Motion, HoldFreezesTheViewUntilTheNextKeyWhichThenJumps) {
  Keys keys;
  keys.totalFrames = 101;
  keys.AddPosition(0.0, 0.0, 0.0);
  keys.AddVelocities(0.0, kVelocityLinear, kVelocityLinear);
  keys.AddPosition(0.5, 0.5, -0.5);
  keys.AddVelocities(0.5, kVelocityLinear, kVelocityHold);
  keys.AddPosition(0.75, 0.9, -0.9);
  keys.AddVelocities(0.75, kVelocityLinear, kVelocityLinear);
  keys.AddPosition(1.0, 1.0, -1.0);
  keys.AddVelocities(1.0, kVelocityLinear, kVelocityLinear);
  const Motion motion(keys);
  for (const double t : {0.51, 0.6, 0.74}) EXPECT_NEAR(motion.CentreAt(t).x, 0.5, 1e-9) << t;
  EXPECT_GT(motion.CentreAt(0.76).x, 0.9);
}

TEST(Motion, ConstantKeysOnBothSidesAreTravelledAtOneSpeed) {
  Keys keys;
  keys.totalFrames = 101;
  // A long stretch in little time and a short one in much: at the keys' own times, a jolt at 0.2.
  const double path[3][2] = {{0.0, 0.0}, {0.2, 0.6}, {1.0, 0.9}};
  for (const auto& [t, x] : path) {
    keys.AddPosition(t, x, 0.0);
    keys.AddVelocities(t, kVelocityConstant, kVelocityConstant);
  }
  const Motion motion(keys);
  ASSERT_EQ(motion.Table().Entries().size(), 3u);  // start, the passed key, the end
  EXPECT_NEAR(motion.Table().Entries()[1].travelTime, 0.6 / 0.9, 1e-12);
  for (int32_t i = 0; i < 10; ++i) EXPECT_NEAR(motion.CentreAt(i / 10.0).x, 0.09 * i, 1e-9) << i;
}

TEST(Motion, ASingleZoomKeyYieldsZoomOne) {
  Keys keys;
  keys.AddZoom(0.0, 5.0);
  EXPECT_EQ(Motion(keys).At(0.5, {5.0, 0.0, 0.0}).zoom, 1.0);
}

TEST(Motion, APauseOfTwoEqualKeysIsAPause) {
  Keys keys;
  keys.totalFrames = 101;
  for (const double t : {0.0, 0.4, 0.6, 1.0}) keys.AddVelocities(t, 0, 0);
  keys.AddPosition(0.0, 0.0, 0.0);
  keys.AddPosition(0.4, 0.3, 0.1);
  keys.AddPosition(0.6, 0.3, 0.1);
  keys.AddPosition(1.0, 0.5, 0.2);
  const Motion motion(keys);
  for (int i = 40; i <= 60; ++i) EXPECT_NEAR(motion.CentreAt(i / 100.0).x, 0.3, 1e-9) << i;
}

TEST(Motion, ASplinesLastFramesAreNotThrownBackToTheFirstKey) {
  Keys keys;
  keys.pathType = kPathSpline;
  keys.totalFrames = 24;
  keys.AddPosition(0.0, -0.4, 0.1);
  keys.AddPosition(1.0, 0.4, -0.1);
  for (const double t : {0.0, 1.0}) keys.AddVelocities(t, kVelocityEase, kVelocityEase);
  const Motion motion(keys);
  double last = -1.0;
  for (int32_t frame = 0; frame < 24; ++frame) {
    const double x = motion.CentreAt(std::min(frame / 23.0, 0.9999999999999)).x;
    EXPECT_GE(x, last) << frame;
    last = x;
  }
  EXPECT_NEAR(last, 0.4, 0.01);
}

TEST(Motion, MissingVelocityKeysCountAsLinear) {
  Keys keys;
  keys.totalFrames = 101;
  for (const double t : {0.0, 0.5, 1.0}) keys.AddPosition(t, t, t);
  EXPECT_NEAR(Motion(keys).CentreAt(0.3).x, 0.3, 1e-9);
}

TEST(Motion, APositionWithOneKeyLooksAtTheMiddle) {
  Keys keys;
  keys.AddPosition(0.0, 0.25, 0.5);
  EXPECT_EQ(Motion(keys).At(0.0, {2.0, 0.3, 0.3}), (View{1.0, 0.0, 0.0}));
}

TEST(Motion, WithoutAPositionOrAZoomTheHostsOwnValuesStand) {
  const View held = {3.0, 0.25, -0.5};
  EXPECT_EQ(Motion(MotionKeys()).At(0.5, held), held);
}

TEST(Motion, TimesAboveOneAreHeldJustBelowIt) {
  Keys keys;
  keys.AddZoom(0.0, 1.0);
  keys.AddZoom(1.0, 3.0);
  const Motion motion(keys);
  EXPECT_NEAR(motion.ZoomAt(9.0), 3.0, 1e-6);
  EXPECT_LT(motion.ZoomAt(9.0), 3.0) << "eight nines, not one";
}

TEST(Motion, NoResultIsEverNaNOrInfinite) {
  for (const double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e308}) {
    Keys keys;
    keys.pathType = kPathSpline;
    keys.totalFrames = 30;
    keys.AddPosition(0.0, bad, 0.0);
    keys.AddPosition(0.5, -bad, bad);
    keys.AddPosition(1.0, 0.0, bad);
    keys.AddZoom(0.0, bad);
    keys.AddZoom(1.0, -bad);
    for (const double t : {0.0, 0.5, 1.0}) keys.AddVelocities(t, kVelocityEase, kVelocityEase);
    const Motion motion(keys);
    for (int32_t frame = 0; frame < 30; ++frame) {
      const View view = motion.At(frame / 30.0, View{});
      EXPECT_TRUE(std::isfinite(view.zoom) && std::isfinite(view.centreX) &&
                  std::isfinite(view.centreY));
    }
  }
}

TEST(Motion, AMotionThatIsMovedStaysTheSame) {
  Motion made(ThreeKeys());
  const View before = made.At(0.3, View{});
  const Motion moved = std::move(made);
  EXPECT_EQ(moved.At(0.3, View{}), before);
}

}  // namespace
}  // namespace kelto
