#include "adapters/frei0r/scene.h"

#include <gtest/gtest.h>

namespace kelto::frei0r {
namespace {

TEST(MomentAt, MeetsTheFramesOfAMotionOfAnyLengthExactly) {
  for (const int32_t frames : {2, 3, 25, 125, 1000, 1501}) {
    for (int32_t frame = 0; frame < frames; ++frame) {
      const Moment moment = MomentAt(static_cast<double>(frame) / (frames - 1));
      ASSERT_EQ(static_cast<double>(moment.frame) / (moment.frames - 1),
                static_cast<double>(frame) / (frames - 1));
    }
  }
}

TEST(MomentAt, ComesCloseToAnyProgress) {
  for (int step = 0; step <= 8100; ++step) {
    const double progress = step * 0.000123456789;
    const Moment moment = MomentAt(progress);
    ASSERT_NEAR(static_cast<double>(moment.frame) / (moment.frames - 1), progress, 1.6e-5);
  }
}

TEST(MomentAt, StaysInsideTheMotion) {
  for (const double progress : {-1.0, 0.0, 1e-300, 1e-9, 1 - 1e-12, 1.0, 7.0}) {
    const Moment moment = MomentAt(progress);
    EXPECT_GE(moment.frame, 0);
    EXPECT_LT(moment.frame, moment.frames);
  }
}

}  // namespace
}  // namespace kelto::frei0r
