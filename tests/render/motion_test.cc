#include "render/motion.h"

#include <gtest/gtest.h>

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
  instance.settings.pathType = c["pathType"];
  instance.settings.progressive = c["progressive"];
  instance.host().totalFrames = c["totalFrames"];
  instance.host().videoType = c["videoType"];
}

TEST(FrameMotion, AgreesWithReferenceFrames) {
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
      EXPECT_NEAR(instance.settings.view.zoom, f["zoom"].get<double>(), 1e-7) << f;
      EXPECT_NEAR(instance.settings.view.centreX, f["x"].get<double>(), 1e-7) << f;
      EXPECT_NEAR(instance.settings.view.centreY, f["y"].get<double>(), 1e-7) << f;
      ++compared;
    }
  }
  EXPECT_GT(compared, 200);
}

TEST(FrameMotion, ReadsTheKeysOnceAfterEveryReportedChange) {
  Instance instance;
  instance.host() = {.currentFrame = 5, .totalFrames = 11};
  instance.SetKey("size", 0.0, 2.0);
  instance.SetKey("size", 1.0, 2.0);
  EvaluateMotion(instance);
  EXPECT_FALSE(instance.paramsChanged);
  EXPECT_EQ(instance.settings.view.zoom, 2.0);
  for (const double t : {0.0, 1.0}) instance.SetKey("size", t, 4.0);
  EvaluateMotion(instance);
  EXPECT_EQ(instance.settings.view.zoom, 2.0) << "a change is reported before the next frame";
  instance.paramsChanged = true;
  EvaluateMotion(instance);
  EXPECT_EQ(instance.settings.view.zoom, 4.0);
}

TEST(FrameMotion, AnotherKindOfPathIsFollowedAtOnce) {
  Instance instance;
  instance.host() = {.currentFrame = 2, .totalFrames = 11};
  instance.SetPosition(0.0, 0.0, 0.0);
  instance.SetPosition(0.5, 1.0, 0.0);
  instance.SetPosition(1.0, 0.0, 0.0);
  for (const double t : {0.0, 0.5, 1.0}) {
    instance.SetVelocities(t, kVelocityLinear, kVelocityLinear);
  }
  EvaluateMotion(instance);
  EXPECT_NEAR(instance.settings.view.centreX, 0.4, 1e-9);
  instance.settings.pathType = kPathSpline;
  EvaluateMotion(instance);
  EXPECT_GT(instance.settings.view.centreX, 0.42);
}

TEST(FrameMotion, WithoutParametersTheHostsOwnValuesStand) {
  PanZoomInstance instance;  // no parameters were made
  instance.settings.view.zoom = 3.0;
  instance.settings.view.centreX = 0.25;
  instance.settings.view.centreY = -0.5;
  EvaluateMotion(instance);
  EXPECT_EQ(instance.settings.view.zoom, 3.0);
  EXPECT_EQ(instance.settings.view.centreX, 0.25);
  EXPECT_EQ(instance.settings.view.centreY, -0.5);
}

TEST(FrameMotion, AZoomWithoutAnInstanceBehindItKeepsItsValue) {
  Instance instance;
  instance.host().totalFrames = 11;
  instance.SetKey("size", 0.0, 2.0);
  instance.SetKey("size", 1.0, 4.0);
  instance.parameter("size").SetUserData(nullptr);
  instance.settings.view.zoom = 7.0;
  EvaluateMotion(instance);
  EXPECT_EQ(instance.settings.view.zoom, 7.0);
}

TEST(FrameTime, TheLastFieldOfTheLastFrameIsJustBelowOne) {
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

TEST(FrameTime, ProgressiveVideoHasNoSecondFieldTime) {
  Instance instance;
  instance.host() = {.currentFrame = 3, .totalFrames = 11, .field = 1};
  EXPECT_DOUBLE_EQ(FrameTime(instance), 0.3);
  EXPECT_TRUE(instance.settings.progressive);
}

TEST(FrameTime, AOneFrameEffectHasTimeZero) {
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
