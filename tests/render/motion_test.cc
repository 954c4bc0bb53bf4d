#include "render/motion.h"

#include <gtest/gtest.h>

#include <cmath>

#include "render/arc_table.h"
#include "tests/support/instance.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using nlohmann::json;
using test::Instance;

void SetUpCase(Instance& instance, const json& c) {
  for (const auto& key : c["position"]) instance.SetPosition(key[0], key[1], key[2]);
  for (const auto& key : c["size"]) instance.SetKey("size", key[0], key[1].get<double>());
  for (const auto& key : c["invelocity"]) instance.SetKey("invelocity", key[0], key[1].get<int>());
  for (const auto& key : c["outvelocity"])
    instance.SetKey("outvelocity", key[0], key[1].get<int>());
  instance.pathType = c["pathType"];
  instance.progressive = c["progressive"];
  instance.host().totalFrames = c["totalFrames"];
  instance.host().videoType = c["videoType"];
}

TEST(Motion, AgreesWithReferenceFrames) {
  int compared = 0;
  for (const auto& c : test::Vectors()["motion"]) {
    Instance instance;
    SetUpCase(instance, c);
    for (const auto& f : c["frames"]) {
      if (f["fragile"]) continue;
      instance.host().currentFrame = f["frame"];
      instance.host().field = f["field"];
      EXPECT_NEAR(FrameTime(instance), f["t"].get<double>(), 1e-12);
      EvaluateMotion(instance);
      EXPECT_NEAR(instance.zoom, f["zoom"].get<double>(), 1e-7) << f;
      EXPECT_NEAR(instance.centreX, f["x"].get<double>(), 1e-7) << f;
      EXPECT_NEAR(instance.centreY, f["y"].get<double>(), 1e-7) << f;
      ++compared;
    }
  }
  EXPECT_GT(compared, 200);
}

TEST(Motion, AgreesWithReferenceTablesAndRemapping) {
  for (const auto& c : test::Vectors()["motion"]) {
    Instance instance;
    SetUpCase(instance, c);
    BuildArcTable(instance);
    ASSERT_EQ(instance.motionTable.size(), c["table"].size());
    for (size_t i = 0; i < c["table"].size(); ++i) {
      EXPECT_NEAR(instance.motionTable[i].keyTime, c["table"][i][0].get<double>(), 1e-7);
      EXPECT_NEAR(instance.motionTable[i].travelTime, c["table"][i][1].get<double>(), 1e-7);
    }
    for (const auto& r : c["remap"]) {
      const bool fragile = r[3];
      if (fragile) continue;
      EXPECT_NEAR(RemapTime(instance, r[0], false), r[1].get<double>(), 1e-7) << r;
      EXPECT_NEAR(RemapTime(instance, r[0], true), r[2].get<double>(), 1e-7) << r;
    }
  }
}

/// Three keys over 101 frames, so that frame f has time f / 100.
class ThreeKeys : public testing::Test {
 protected:
  ThreeKeys() {
    instance.host().totalFrames = 101;
    for (const double t : {0.0, 0.5, 1.0}) {
      instance.SetPosition(t, t, -t);
      instance.SetVelocities(t, VelocityLinear, VelocityLinear);
    }
  }
  void EvaluateAt(int32_t frame) {
    instance.host().currentFrame = frame;
    instance.motionTable.clear();
    EvaluateMotion(instance);
  }
  Instance instance;
};

TEST_F(ThreeKeys, LinearVelocitiesMoveEvenly) {
  for (const int32_t frame : {0, 10, 49, 50, 77}) {
    EvaluateAt(frame);
    EXPECT_NEAR(instance.centreX, frame / 100.0, 1e-9);
    EXPECT_NEAR(instance.centreY, -frame / 100.0, 1e-9);
  }
}

TEST_F(ThreeKeys, TimesZeroAndOneAreNeverEasedOrLookedUp) {
  for (int32_t i = 0; i < 3; ++i) {
    const int32_t hold = VelocityHold;
    instance.parameter("outvelocity").GetKey(i)->SetValue(&hold, sizeof hold);
  }
  instance.motionTable = {{0.0, 0.0}, {0.7, 1.0}};
  EXPECT_EQ(RemapTime(instance, 0.0, true), 0.0);
  EXPECT_EQ(RemapTime(instance, 1.0, true), 1.0);
  EXPECT_NE(RemapTime(instance, 0.999, true), 0.999);
}

TEST_F(ThreeKeys, HoldFreezesTheViewUntilTheNextKeyWhichThenJumps) {
  instance.SetKey("outvelocity", 0.5, int32_t{VelocityHold});
  for (const int32_t frame : {51, 75, 99}) {
    EvaluateAt(frame);
    EXPECT_NEAR(instance.centreX, 0.5, 1e-9) << frame;
  }
  instance.SetPosition(0.75, 0.9, -0.9);
  instance.SetVelocities(0.75, VelocityLinear, VelocityLinear);
  EvaluateAt(74);
  EXPECT_NEAR(instance.centreX, 0.5, 1e-9);
  EvaluateAt(76);
  EXPECT_GT(instance.centreX, 0.9);
}

TEST_F(ThreeKeys, EaseStartsAndEndsSlowly) {
  for (const double t : {0.0, 0.5, 1.0}) instance.SetVelocities(t, VelocityEase, VelocityEase);
  EvaluateAt(5);
  EXPECT_LT(instance.centreX, 0.03);
  EvaluateAt(25);
  EXPECT_NEAR(instance.centreX, 0.25, 1e-9);
  EvaluateAt(45);
  EXPECT_GT(instance.centreX, 0.47);
}

TEST(Motion, ConstantKeysOnBothSidesAreTravelledAtOneSpeed) {
  Instance instance;
  instance.host().totalFrames = 101;
  // A long stretch in little time and a short one in much: without even speed, a jolt at 0.2.
  const double path[3][2] = {{0.0, 0.0}, {0.2, 0.6}, {1.0, 0.9}};
  for (const auto& [t, x] : path) {
    instance.SetPosition(t, x, 0.0);
    instance.SetVelocities(t, VelocityConstant, VelocityConstant);
  }
  BuildArcTable(instance);
  ASSERT_EQ(instance.motionTable.size(), 3u);  // start, the passed key, the end
  EXPECT_NEAR(instance.motionTable[1].travelTime, 0.6 / 0.9, 1e-12);
  for (int32_t frame = 0; frame < 101; frame += 10) {
    instance.host().currentFrame = frame;
    EvaluateMotion(instance);
    EXPECT_NEAR(instance.centreX, 0.9 * frame / 100.0, 1e-9) << frame;
  }
}

TEST(Motion, AConstantLastKeyStillEndsItsRun) {
  Instance instance;
  instance.host().totalFrames = 40;
  instance.SetPosition(0.0, 0.0, 0.0);
  instance.SetPosition(0.5, 0.1, 0.0);
  instance.SetVelocities(0.0, VelocityLinear, VelocityLinear);
  instance.SetVelocities(0.5, VelocityConstant, VelocityConstant);
  BuildArcTable(instance);
  ASSERT_EQ(instance.motionTable.size(), 2u);
  EXPECT_EQ(instance.motionTable.back().keyTime, 0.5);
}

TEST(Motion, ASingleSizeKeyYieldsZoomOne) {
  Instance instance;
  instance.host().totalFrames = 10;
  instance.SetKey("size", 0.0, 5.0);
  instance.zoom = 5.0;
  EvaluateMotion(instance);
  EXPECT_EQ(instance.zoom, 1.0);
}

TEST(Motion, TheLastFieldOfTheLastFrameIsJustBelowOne) {
  Instance instance;
  instance.host() = {
      .currentFrame = 9, .totalFrames = 10, .field = 1, .videoType = hfxVideoType525};
  EXPECT_EQ(FrameTime(instance), 0.9999999999999);
  instance.host().field = 0;
  EXPECT_EQ(FrameTime(instance), 0.9999999999999);
  instance.host().currentFrame = 8;
  instance.host().field = 1;
  EXPECT_DOUBLE_EQ(FrameTime(instance), 8.5 / 9.0);
}

TEST(Motion, ProgressiveVideoHasNoSecondFieldTime) {
  Instance instance;
  instance.host() = {.currentFrame = 3, .totalFrames = 11, .field = 1};
  EXPECT_DOUBLE_EQ(FrameTime(instance), 0.3);
  EXPECT_TRUE(instance.progressive);
}

TEST(Motion, FewerThanFourFramesSampleASplineFromKeyToKey) {
  for (const int32_t total : {1, 2, 3, 4}) {
    Instance instance;
    instance.pathType = 1;
    instance.host().totalFrames = total;
    for (const double t : {0.0, 0.3, 1.0}) instance.SetPosition(t, t * t, 1.0 - t);
    BuildArcTable(instance);
    for (const ArcEntry& entry : instance.motionTable) {
      EXPECT_TRUE(std::isfinite(entry.keyTime) && std::isfinite(entry.travelTime));
    }
    EXPECT_EQ(instance.motionTable.size(), 3u) << total;
  }
}

TEST(Motion, APauseOfTwoEqualKeysIsAPause) {
  Instance instance;
  instance.host().totalFrames = 101;
  for (const double t : {0.0, 0.4, 0.6, 1.0}) instance.SetVelocities(t, 0, 0);
  instance.SetPosition(0.0, 0.0, 0.0);
  instance.SetPosition(0.4, 0.3, 0.1);
  instance.SetPosition(0.6, 0.3, 0.1);
  instance.SetPosition(1.0, 0.5, 0.2);
  for (int32_t frame = 40; frame <= 60; ++frame) {
    instance.host().currentFrame = frame;
    EvaluateMotion(instance);
    EXPECT_NEAR(instance.centreX, 0.3, 1e-9) << frame;
  }
}

TEST(Motion, ASplinesLastFramesAreNotThrownBackToTheFirstKey) {
  Instance instance;
  instance.pathType = 1;
  instance.host().totalFrames = 24;
  const double path[2][3] = {{0.0, -0.4, 0.1}, {1.0, 0.4, -0.1}};
  for (const auto& [t, x, y] : path) {
    instance.SetPosition(t, x, y);
    instance.SetVelocities(t, VelocityEase, VelocityEase);
  }
  double last = -1.0;
  for (int32_t frame = 0; frame < 24; ++frame) {
    instance.host().currentFrame = frame;
    EvaluateMotion(instance);
    EXPECT_GE(instance.centreX, last) << frame;
    last = instance.centreX;
  }
  EXPECT_NEAR(last, 0.4, 0.01);
}

TEST(Motion, ASplinesStepPastAKeyCountsTwiceInTheLengthOfItsRun) {
  Instance instance;
  instance.pathType = 1;
  instance.host().totalFrames = 40;  // ten steps of 0.1, which pass the key at 0.35
  for (const double t : {0.0, 0.35, 1.0}) {
    instance.SetPosition(t, t, 0.0);  // a straight line, as long as the time it takes
    instance.SetVelocities(t, VelocityConstant, VelocityConstant);
  }
  BuildArcTable(instance);
  // To 0.4 and back to 0.35, and from there to 1.0, where the curve ends.
  const double length = 0.4 + 0.05 + 0.65;
  ASSERT_EQ(instance.motionTable.size(), 13u);
  EXPECT_NEAR(instance.motionTable[4].keyTime, 0.35, 1e-12);
  EXPECT_NEAR(instance.motionTable[4].travelTime, 0.35 / length, 1e-6);
  EXPECT_NEAR(instance.motionTable[11].travelTime, 1.0 / length, 1e-6);
  EXPECT_EQ(instance.motionTable[12].travelTime, 1.0) << "closed at the last key";
}

TEST(Motion, AStretchThatTakesNoTravelTimeIsLeftAtItsStart) {
  Instance instance;
  instance.motionTable = {{0.2, 0.5}, {0.7, 0.5}, {1.0, 1.0}};
  EXPECT_EQ(LookupArcTable(instance, 0.5), 0.2);
}

TEST(Motion, MissingVelocityKeysCountAsLinear) {
  Instance instance;
  instance.host().totalFrames = 101;
  for (const double t : {0.0, 0.5, 1.0}) instance.SetPosition(t, t, t);
  instance.host().currentFrame = 30;
  EvaluateMotion(instance);
  EXPECT_NEAR(instance.centreX, 0.3, 1e-9);
}

TEST(Motion, APositionWithOneKeyLeavesBothPathCurvesEmpty) {
  Instance instance;
  instance.host().totalFrames = 5;
  instance.SetPosition(0.0, 0.25, 0.5);
  EvaluateMotion(instance);
  ASSERT_TRUE(instance.pathCurveX && instance.pathCurveY);
  EXPECT_EQ(CurveCount(instance.pathCurveX), 0);
  EXPECT_EQ(CurveCount(instance.pathCurveY), 0);
  EXPECT_EQ(instance.centreX, 0.0);
}

TEST(Motion, WithoutAPositionOrASizeTheHostsOwnValuesStand) {
  PanZoomInstance instance;  // no parameters were made
  instance.zoom = 3.0;
  instance.centreX = 0.25;
  instance.centreY = -0.5;
  EvaluateMotion(instance);
  EXPECT_EQ(instance.zoom, 3.0);
  EXPECT_EQ(instance.centreX, 0.25);
  EXPECT_EQ(instance.centreY, -0.5);
}

TEST(Motion, AnXCurveWithoutAYCurveIsKeptAsItIs) {
  Instance instance;
  instance.pathCurveX = CurveCreate();
  CurveAppendXY(instance.pathCurveX, 0.0, 0.75);
  Curve* before = instance.pathCurveX;
  RebuildPathCurves(instance);
  EXPECT_EQ(instance.pathCurveX, before);
  EXPECT_EQ(instance.pathCurveY, nullptr);
}

TEST(Motion, NoResultIsEverNaNOrInfinite) {
  for (const double bad : {static_cast<double>(NAN), static_cast<double>(INFINITY), 1e308}) {
    Instance instance;
    instance.pathType = 1;
    instance.host().totalFrames = 30;
    instance.SetPosition(0.0, bad, 0.0);
    instance.SetPosition(0.5, -bad, bad);
    instance.SetPosition(1.0, 0.0, bad);
    instance.SetKey("size", 0.0, bad);
    instance.SetKey("size", 1.0, -bad);
    for (const double t : {0.0, 0.5, 1.0}) instance.SetVelocities(t, VelocityEase, VelocityEase);
    for (int32_t frame = 0; frame < 30; ++frame) {
      instance.host().currentFrame = frame;
      EvaluateMotion(instance);
      EXPECT_TRUE(std::isfinite(instance.zoom) && std::isfinite(instance.centreX) &&
                  std::isfinite(instance.centreY));
    }
  }
}

TEST(Motion, AOneFrameEffectHasTimeZero) {
  Instance instance;
  instance.host().totalFrames = 1;
  EXPECT_EQ(FrameTime(instance), 0.0);
  instance.host() = {.currentFrame = 1, .totalFrames = 2};
  EXPECT_EQ(FrameTime(instance), 0.9999999999999);
  instance.host().currentFrame = 0;
  EXPECT_EQ(FrameTime(instance), 0.0);
}

}  // namespace
}  // namespace kelto
