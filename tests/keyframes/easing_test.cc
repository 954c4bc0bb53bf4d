#include "keyframes/easing.h"

#include <gtest/gtest.h>

#include "tests/keyframes/keys.h"

namespace kelto {
namespace {

using test::Keys;

Keys ThreeKeys(int32_t in, int32_t out) {
  Keys keys;
  for (const double t : {0.0, 0.5, 1.0}) keys.AddVelocities(t, in, out);
  return keys;
}

TEST(Easing, LinearVelocitiesChangeNoTime) {
  const VelocityEasing easing(ThreeKeys(kVelocityLinear, kVelocityLinear));
  for (const double t : {0.1, 0.5, 0.77}) EXPECT_NEAR(easing.At(t).time, t, 1e-12);
}

TEST(Easing, EaseStartsAndEndsSlowly) {
  const VelocityEasing easing(ThreeKeys(kVelocityEase, kVelocityEase));
  EXPECT_LT(easing.At(0.05).time, 0.03);
  EXPECT_NEAR(easing.At(0.25).time, 0.25, 1e-12) << "half-way both halves meet";
  EXPECT_GT(easing.At(0.45).time, 0.47);
}

TEST(Easing, HoldStandsAtItsKeyAndNothingMovesIt) {
  const VelocityEasing easing(ThreeKeys(kVelocityEase, kVelocityHold));
  for (const double t : {0.51, 0.75, 0.999}) {
    EXPECT_EQ(easing.At(t).time, 0.5);
    EXPECT_TRUE(easing.At(t).final);
  }
}

TEST(Easing, Times0And1AreFinal) {
  const VelocityEasing easing(ThreeKeys(kVelocityEase, kVelocityHold));
  for (const double t : {0.0, 1.0}) {
    EXPECT_EQ(easing.At(t).time, t);
    EXPECT_TRUE(easing.At(t).final);
  }
  EXPECT_FALSE(VelocityEasing(ThreeKeys(kVelocityEase, kVelocityEase)).At(0.3).final);
}

TEST(Easing, ARunOfConstantKeysIsOneStretch) {
  Keys keys;
  keys.AddVelocities(0.0, kVelocityEase, kVelocityEase);
  for (const double t : {0.2, 0.4}) keys.AddVelocities(t, kVelocityConstant, kVelocityConstant);
  keys.AddVelocities(1.0, kVelocityEase, kVelocityEase);
  const VelocityEasing easing(keys);
  // Eased over 0..1: slow only at its two ends, and 0.1 along after a quarter of its time.
  EXPECT_NEAR(easing.At(0.25).time, 0.1, 1e-12);
  EXPECT_NEAR(easing.At(0.5).time, 0.5, 1e-12);
  EXPECT_NEAR(easing.At(0.75).time, 0.9, 1e-12);
}

TEST(Easing, AMissingInKeyCountsAsLinear) {
  Keys keys = ThreeKeys(kVelocityEase, kVelocityLinear);
  keys.in->resize(1);
  EXPECT_NEAR(VelocityEasing(keys).At(0.45).time, 0.45, 1e-12);
}

TEST(Easing, WithoutVelocitiesNoTimeIsEased) {
  Keys keys = ThreeKeys(kVelocityEase, kVelocityEase);
  keys.in.reset();
  EXPECT_EQ(VelocityEasing(keys).At(0.05).time, 0.05);
  EXPECT_TRUE(VelocityEasing(keys).At(0.05).final) << "nor evened out along the path";
  EXPECT_EQ(VelocityEasing(Keys()).At(0.05).time, 0.05);
  EXPECT_FALSE(VelocityEasing(Keys()).At(0.05).final);
}

}  // namespace
}  // namespace kelto
