// SelectCachedLevel: which of an instance's images a frame is rendered from.
#include <gtest/gtest.h>

#include "tests/image/instance.h"

namespace kelto {
namespace {

using test::Instance;
using test::Output;

class Levels : public test::ImageTest {
 protected:
  Levels() { instance.settings.display = 1; }
  Instance instance;
};

TEST_F(Levels, LevelZeroIsTakenEvenWhenItIsSmallerThanNeeded) {
  IplImage* image = instance.Hold(100, 80);
  EXPECT_EQ(SelectCachedLevel(instance, Output(720, 486)), image);
}

TEST_F(Levels, NothingLoadedGivesNothing) {
  EXPECT_EQ(SelectCachedLevel(instance, Output(720, 486)), nullptr);
}

TEST_F(Levels, TheLastLevelLargerThanNeededInBothDirectionsIsTaken) {
  instance.Hold(800, 800);
  IplImage* half = instance.Hold(400, 400, 1);
  instance.Hold(200, 200, 2);
  EXPECT_EQ(SelectCachedLevel(instance, Output(300, 300)), half);
}

TEST_F(Levels, EqualSizesAreNotLarger) {
  IplImage* natural = instance.Hold(800, 800);
  instance.Hold(400, 500, 1);
  EXPECT_EQ(SelectCachedLevel(instance, Output(400, 100)), natural);
  EXPECT_EQ(SelectCachedLevel(instance, Output(100, 500)), natural);
  EXPECT_NE(SelectCachedLevel(instance, Output(399, 499)), natural);
}

TEST_F(Levels, AMissingLevelEndsTheSearch) {
  IplImage* natural = instance.Hold(800, 800);
  instance.Hold(400, 400, 2);
  EXPECT_EQ(SelectCachedLevel(instance, Output(10, 10)), natural);
}

TEST_F(Levels, AllEightLevelsAreConsidered) {
  IplImage* last = nullptr;
  for (int level = 0; level < kCacheLevels; ++level) last = instance.Hold(100, 100, level);
  EXPECT_EQ(SelectCachedLevel(instance, Output(10, 10)), last);
}

TEST_F(Levels, ZoomScalesTheNeededSizeInTheTargetDisplayOnly) {
  IplImage* natural = instance.Hold(800, 800);
  IplImage* half = instance.Hold(400, 400, 1);
  instance.settings.view.zoom = 2.0;
  EXPECT_EQ(SelectCachedLevel(instance, Output(250, 250)), natural);
  instance.settings.display = 0;
  EXPECT_EQ(SelectCachedLevel(instance, Output(250, 250)), half);
}

TEST_F(Levels, SeparateFieldsNeedTwiceTheirHeight) {
  IplImage* natural = instance.Hold(800, 800);
  IplImage* half = instance.Hold(400, 400, 1);
  instance.host().fieldMode = hfxFieldModeInterleaved;
  EXPECT_EQ(SelectCachedLevel(instance, Output(250, 250)), half);
  instance.host().fieldMode = hfxFieldModeSeparate;
  EXPECT_EQ(SelectCachedLevel(instance, Output(250, 250)), natural);
}

}  // namespace
}  // namespace kelto
