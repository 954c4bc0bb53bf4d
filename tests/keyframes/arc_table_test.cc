// The arc-length table: which keys end a run, what a spline's steps add up to, and where it is not
// asked.
#include "keyframes/arc_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "keyframes/motion.h"
#include "tests/keyframes/keys.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using test::Keys;

std::vector<ArcEntry> TableOf(const MotionKeys& keys) { return Motion(keys).Table().Entries(); }

/// The time at which the view passes the middle of three keys on a line: a long stretch in little
/// time, then a short one in much.
double MiddleTime(int32_t in, int32_t out) {
  Keys keys;
  keys.totalFrames = 101;
  keys.AddPosition(0.0, 0.0, 0.0);
  keys.AddPosition(0.2, 0.6, 0.0);
  keys.AddPosition(1.0, 0.9, 0.0);
  keys.AddVelocities(0.0, kVelocityLinear, kVelocityLinear);
  keys.AddVelocities(0.2, in, out);
  keys.AddVelocities(1.0, kVelocityLinear, kVelocityLinear);
  const std::vector<ArcEntry> table = TableOf(keys);
  EXPECT_EQ(table.size(), 3u);
  EXPECT_EQ(table[1].keyTime, 0.2);
  return table[1].travelTime;
}

TEST(ArcTable, AKeyIsPassedThroughOnlyWhenBothItsSidesAreConstant) {
  EXPECT_NEAR(MiddleTime(kVelocityConstant, kVelocityLinear), 0.2, 1e-12);
  EXPECT_NEAR(MiddleTime(kVelocityConstant, kVelocityHold), 0.2, 1e-12);
  EXPECT_NEAR(MiddleTime(kVelocityLinear, kVelocityConstant), 0.2, 1e-12);
  EXPECT_NEAR(MiddleTime(kVelocityConstant, kVelocityConstant), 0.6 / 0.9, 1e-12);
}

/// A spline through four keys: a run of constant speed over the second to the third, which holds.
Keys SplineThatHolds() {
  Keys keys;
  keys.pathType = kPathSpline;
  keys.totalFrames = 41;
  keys.AddPosition(0.0, 0.0, -0.4);
  keys.AddPosition(0.3, 0.1, 0.4);
  keys.AddPosition(0.55, 0.3, -0.2);
  keys.AddPosition(1.0, 0.5, 0.3);
  keys.AddVelocities(0.0, kVelocityConstant, kVelocityConstant);
  keys.AddVelocities(0.3, kVelocityConstant, kVelocityConstant);
  keys.AddVelocities(0.55, kVelocityConstant, kVelocityHold);
  keys.AddVelocities(1.0, kVelocityLinear, kVelocityLinear);
  return keys;
}

TEST(ArcTable, AHeldViewStandsAtTheKeysOwnTimeWhateverTheTableSays) {
  const Motion motion(SplineThatHolds());
  for (const double t : {0.56, 0.7, 0.99}) EXPECT_EQ(motion.PathTime(t), 0.55) << t;
  EXPECT_NE(motion.Table().PathTime(0.55), 0.55);
  EXPECT_NEAR(motion.CentreAt(0.7).x, 0.3, 1e-12);
  EXPECT_NEAR(motion.CentreAt(0.7).y, -0.2, 1e-12);
}

TEST(ArcTable, ARunsStepsThatOvershootItsKeysCountTwice) {
  const std::vector<ArcEntry> table = TableOf(SplineThatHolds());
  const auto end = std::find_if(table.begin(), table.end(),
                                [](const ArcEntry& entry) { return entry.keyTime == 0.55; });
  ASSERT_NE(end, table.end());
  // The run takes eleven steps of 0.055, past 0.3 and past 0.55; its share of the doubled length is
  // 0.898 of its time. Counted once the run would be at its key at 0.520916.
  EXPECT_NEAR(end->travelTime, 0.493934, 1e-6);
}

TEST(ArcTable, OnlyPathTypeOneIsASpline) {
  Keys keys = SplineThatHolds();
  for (const int32_t type : {0, 2, -1}) {
    keys.pathType = type;
    const Motion motion(keys);
    EXPECT_EQ(motion.Table().Entries().size(), 4u) << "an entry a key, path type " << type;
    EXPECT_NEAR(motion.Path().At(0.15).x, 0.05, 1e-12) << "half-way on a straight line";
  }
  keys.pathType = kPathSpline;
  const Motion motion(keys);
  EXPECT_GT(motion.Table().Entries().size(), 4u);
  EXPECT_GT(std::abs(motion.Path().At(0.15).x - 0.05), 1e-3);
}

TEST(ArcTable, AConstantLastKeyStillEndsItsRun) {
  Keys keys;
  keys.totalFrames = 40;
  keys.AddPosition(0.0, 0.0, 0.0);
  keys.AddPosition(0.5, 0.1, 0.0);
  keys.AddVelocities(0.0, kVelocityLinear, kVelocityLinear);
  keys.AddVelocities(0.5, kVelocityConstant, kVelocityConstant);
  const std::vector<ArcEntry> table = TableOf(keys);
  ASSERT_EQ(table.size(), 2u);
  EXPECT_EQ(table.back().keyTime, 0.5);
}

TEST(ArcTable, FewerThanFourFramesSampleASplineFromKeyToKey) {
  for (const int32_t total : {1, 2, 3, 4}) {
    Keys keys;
    keys.pathType = kPathSpline;
    keys.totalFrames = total;
    for (const double t : {0.0, 0.3, 1.0}) keys.AddPosition(t, t * t, 1.0 - t);
    const std::vector<ArcEntry> table = TableOf(keys);
    for (const ArcEntry& entry : table) {
      EXPECT_TRUE(std::isfinite(entry.keyTime) && std::isfinite(entry.travelTime));
    }
    EXPECT_EQ(table.size(), 3u) << total;
  }
}

TEST(ArcTable, ASplinesStepPastAKeyCountsTwiceInTheLengthOfItsRun) {
  Keys keys;
  keys.pathType = kPathSpline;
  keys.totalFrames = 40;  // ten steps of 0.1, which pass the key at 0.35
  for (const double t : {0.0, 0.35, 1.0}) {
    keys.AddPosition(t, t, 0.0);  // a straight line, as long as the time it takes
    keys.AddVelocities(t, kVelocityConstant, kVelocityConstant);
  }
  const std::vector<ArcEntry> table = TableOf(keys);
  // To 0.4 and back to 0.35, and from there to 1.0, where the curve ends.
  const double length = 0.4 + 0.05 + 0.65;
  ASSERT_EQ(table.size(), 13u);
  EXPECT_NEAR(table[4].keyTime, 0.35, 1e-12);
  EXPECT_NEAR(table[4].travelTime, 0.35 / length, 1e-6);
  EXPECT_NEAR(table[11].travelTime, 1.0 / length, 1e-6);
  EXPECT_EQ(table[12].travelTime, 1.0) << "closed at the last key";
}

TEST(ArcTable, AStretchThatTakesNoTravelTimeIsLeftAtItsStart) {
  EXPECT_EQ(ArcTable({{0.2, 0.5}, {0.7, 0.5}, {1.0, 1.0}}, 1.0).PathTime(0.5), 0.2);
}

TEST(ArcTable, TimesThatNoTwoEntriesEncloseAreTime0) {
  EXPECT_EQ(ArcTable({{0.0, 0.0}, {0.7, 0.5}}, 1.0).PathTime(0.6), 0.0);
  EXPECT_EQ(ArcTable({{0.0, 0.0}, {0.7, 0.5}}, 1.0).PathTime(-0.1), 0.0);
  EXPECT_EQ(ArcTable({{0.0, 0.0}}, 1.0).PathTime(0.0), 0.0);
  EXPECT_EQ(ArcTable({}, 1.0).PathTime(0.5), 0.0);
}

TEST(ArcTable, TimesAreHeldToTheLastKeys) {
  EXPECT_EQ(ArcTable({{0.0, 0.0}, {0.4, 0.5}}, 0.5).PathTime(0.9), 0.4);
}

TEST(ArcTable, ATableThatRunsToAndFroIsAnsweredByTheFirstTwoEntriesThatEncloseATime) {
  const ArcTable table({{0.0, 0.0}, {0.1, -0.5}, {0.5, 0.3}, {0.6, 0.1}, {1.0, 1.0}}, 1.0);
  EXPECT_DOUBLE_EQ(table.PathTime(0.2), 0.1 + 0.4 * 0.7 / 0.8);
  EXPECT_DOUBLE_EQ(table.PathTime(0.8), 0.6 + 0.4 * 0.7 / 0.9);
}

}  // namespace
}  // namespace kelto
