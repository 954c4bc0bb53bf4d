// The even-speed table: which keys end a run, what a spline's steps add up to, and where it is not
// asked.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "render/arc_table.h"
#include "render/motion.h"
#include "tests/support/instance.h"

namespace kelto {
namespace {

using test::Instance;

/// Three keys on a line: a long stretch in little time, then a short one in much.
class UnevenLine : public testing::Test {
 protected:
  UnevenLine() {
    instance.host().totalFrames = 101;
    const double path[3][2] = {{0.0, 0.0}, {0.2, 0.6}, {1.0, 0.9}};
    for (const auto& [t, x] : path) {
      instance.SetPosition(t, x, 0.0);
      instance.SetVelocities(t, VelocityLinear, VelocityLinear);
    }
  }
  /// The time at which the view passes the middle key.
  double MiddleTime(int32_t in, int32_t out) {
    instance.SetVelocities(0.2, in, out);
    BuildArcTable(instance);
    EXPECT_EQ(instance.motionTable.size(), 3u);
    EXPECT_EQ(instance.motionTable[1].keyTime, 0.2);
    return instance.motionTable[1].travelTime;
  }
  Instance instance;
};

TEST_F(UnevenLine, AKeyIsPassedThroughOnlyWhenBothItsSidesAreConstant) {
  EXPECT_NEAR(MiddleTime(VelocityConstant, VelocityLinear), 0.2, 1e-12);
  EXPECT_NEAR(MiddleTime(VelocityConstant, VelocityHold), 0.2, 1e-12);
  EXPECT_NEAR(MiddleTime(VelocityLinear, VelocityConstant), 0.2, 1e-12);
  EXPECT_NEAR(MiddleTime(VelocityConstant, VelocityConstant), 0.6 / 0.9, 1e-12);
}

/// A spline through four keys: a run of constant speed over the second to the third, which holds.
class SplineThatHolds : public testing::Test {
 protected:
  SplineThatHolds() {
    instance.pathType = 1;
    instance.host().totalFrames = 41;
    const double path[4][3] = {{0.0, 0.0, -0.4}, {0.3, 0.1, 0.4}, {0.55, 0.3, -0.2}, {1, 0.5, 0.3}};
    for (const auto& [t, x, y] : path) {
      instance.SetPosition(t, x, y);
      instance.SetVelocities(t, VelocityConstant, VelocityConstant);
    }
    instance.SetVelocities(0.55, VelocityConstant, VelocityHold);
    instance.SetVelocities(1.0, VelocityLinear, VelocityLinear);
  }
  Instance instance;
};

TEST_F(SplineThatHolds, StandsAtTheKeysOwnTimeWhateverTheTableSays) {
  for (const double t : {0.56, 0.7, 0.99}) EXPECT_EQ(RemapTime(instance, t, true), 0.55) << t;
  EXPECT_NE(LookupArcTable(instance, 0.55), 0.55);
  instance.host().currentFrame = 28;  // time 0.7
  EvaluateMotion(instance);
  EXPECT_NEAR(instance.centreX, 0.3, 1e-12);
  EXPECT_NEAR(instance.centreY, -0.2, 1e-12);
}

TEST_F(SplineThatHolds, ARunsStepsThatOvershootItsKeysCountTwice) {
  BuildArcTable(instance);
  const auto& table = instance.motionTable;
  const auto end = std::find_if(table.begin(), table.end(),
                                [](const ArcEntry& entry) { return entry.keyTime == 0.55; });
  ASSERT_NE(end, table.end());
  // The run takes eleven steps of 0.055, past 0.3 and past 0.55; its share of the doubled length is
  // 0.898 of its time. Counted once the run would be at its key at 0.520916.
  EXPECT_NEAR(end->travelTime, 0.493934, 1e-6);
}

TEST_F(SplineThatHolds, OnlyPathTypeOneIsASpline) {
  for (const int32_t type : {0, 2, -1}) {
    instance.pathType = type;
    BuildArcTable(instance);
    EXPECT_EQ(instance.motionTable.size(), 4u) << "an entry a key, path type " << type;
    RebuildPathCurves(instance);
    EXPECT_NEAR(PointOnPath(instance, 0.15).x, 0.05, 1e-12) << "half-way on a straight line";
  }
  instance.pathType = 1;
  BuildArcTable(instance);
  EXPECT_GT(instance.motionTable.size(), 4u);
  RebuildPathCurves(instance);
  EXPECT_GT(std::abs(PointOnPath(instance, 0.15).x - 0.05), 1e-3);
}

TEST(ZoomOwner, AZoomWithoutAnInstanceBehindItKeepsItsValue) {
  Instance instance;
  instance.host().totalFrames = 11;
  instance.SetKey("size", 0.0, 2.0);
  instance.SetKey("size", 1.0, 4.0);
  instance.parameter("size").SetUserData(nullptr);
  instance.zoom = 7.0;
  EvaluateMotion(instance);
  EXPECT_EQ(instance.zoom, 7.0);
  instance.parameter("size").SetUserData(static_cast<PanZoomState*>(&instance));
  EvaluateMotion(instance);
  EXPECT_EQ(instance.zoom, 2.0);
}

}  // namespace
}  // namespace kelto
