#include "adapters/frei0r/frame_clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kelto::frei0r {
namespace {

TEST(FrameClock, SecondsAreRead) {
  FrameClock clock;
  for (const int64_t frame : {0, 1, 2, 3, 10, 5, 5, 5000}) {
    EXPECT_EQ(clock.Next(frame / 25.0, 25.0), frame);
  }
}

TEST(FrameClock, MillisecondsAreRead) {
  for (const double rate : {25.0, 24000.0 / 1001, 30000.0 / 1001, 60.0, 12.0}) {
    FrameClock clock;
    for (int64_t frame = 0; frame < 2000; ++frame) {
      ASSERT_EQ(clock.Next(frame * 1000.0 / rate, rate), frame) << rate;
    }
  }
}

TEST(FrameClock, OfMillisecondsReadsAFirstTimeThatCouldBeSecondsToo) {
  FrameClock clock = FrameClock::OfMilliseconds();
  for (const int64_t frame : {10, 11, 12, 40, 5000})
    EXPECT_EQ(clock.Next(frame * 40.0, 25.0), frame);
}

TEST(FrameClock, OfMillisecondsCountsForGoodAfterATimeThatIsNoFrame) {
  FrameClock clock = FrameClock::OfMilliseconds();
  EXPECT_EQ(clock.Next(0.0, 25.0), 0);
  EXPECT_EQ(clock.Next(20.0, 25.0), 1);
  EXPECT_EQ(clock.Next(20.0, 25.0), 2);
  EXPECT_EQ(clock.Next(40.0, 25.0), 3);
}

TEST(FrameClock, OfSecondsTakesTheNearestFrameWhateverComesBetween) {
  FrameClock clock = FrameClock::OfSeconds();
  for (const double late : {0.0, 0.004, 0.013, -0.008}) {  // as live pictures come
    for (const int64_t frame : {1, 2, 3, 10, 5, 5, 5000}) {
      EXPECT_EQ(clock.Next(frame / 25.0 + late, 25.0), frame);
      EXPECT_FALSE(clock.MissesRate());
    }
  }
  EXPECT_EQ(FrameClock::OfSeconds().Next(2.513, 25.0), 63);  // begun in the middle
}

TEST(FrameClock, OfSecondsCountsOnWithoutATime) {
  FrameClock clock = FrameClock::OfSeconds();
  EXPECT_EQ(clock.Next(0.4, 25.0), 10);
  EXPECT_EQ(clock.Next(1.8446744073709553e10, 25.0), 11);
  EXPECT_EQ(clock.Next(-1.0, 25.0), 12);
  EXPECT_EQ(clock.Next(std::numeric_limits<double>::quiet_NaN(), 25.0), 13);
  EXPECT_EQ(clock.Next(0.6, 25.0), 15);
}

TEST(FrameClock, MillisecondsRoundedToWholeOnesAreRead) {
  FrameClock clock;
  const double rate = 30000.0 / 1001;
  for (int64_t frame = 0; frame < 2000; ++frame) {
    ASSERT_EQ(clock.Next(std::round(frame * 1000.0 / rate), rate), frame);
  }
}

TEST(FrameClock, OneOfManyRenderThreadsSeesOnlyItsOwnFrames) {
  for (const int threads : {2, 4, 8, 32}) {
    for (int thread = 0; thread < threads; ++thread) {
      FrameClock clock;
      for (int64_t frame = thread; frame < 1500; frame += threads) {
        ASSERT_EQ(clock.Next(frame / 24.0, 24.0), frame) << threads << " threads";
      }
    }
  }
}

TEST(FrameClock, AJumpInSecondsIsRightAgainWithTheNextFrame) {
  FrameClock clock;
  clock.Next(0.0, 25.0);
  clock.Next(40.0, 25.0);  // reads like the frame after the first, in milliseconds
  EXPECT_EQ(clock.Next(40.04, 25.0), 1001);
  EXPECT_EQ(clock.Next(80.0, 25.0), 2000);
}

TEST(FrameClock, GarbageIsCounted) {
  for (const double garbage :
       {-3.68935e20, 1e300, 1.8446744073709553e10, -1.0, std::numeric_limits<double>::quiet_NaN(),
        std::numeric_limits<double>::infinity()}) {
    FrameClock clock;
    for (int64_t frame = 0; frame < 20; ++frame) EXPECT_EQ(clock.Next(garbage, 25.0), frame);
  }
}

TEST(FrameClock, AfterGarbageTheInstanceCountsForGood) {
  FrameClock clock;
  clock.Next(0.0, 25.0);
  clock.Next(-3.68935e20, 25.0);
  EXPECT_EQ(clock.Next(9.0, 25.0), 2);
  EXPECT_EQ(clock.Next(9.04, 25.0), 3);
}

TEST(FrameClock, MissesTheRateOfAnotherStreamButNotWhereTimesAreGarbage) {
  FrameClock fits, other, garbage;
  for (int64_t frame = 0; frame < 5; ++frame) {
    fits.Next(frame / 25.0, 25.0);
    EXPECT_FALSE(fits.MissesRate());
    other.Next(frame / 50.0, 25.0);
    EXPECT_EQ(other.MissesRate(), frame > 0) << frame;
    garbage.Next(-3.68935e20, 25.0);
    EXPECT_FALSE(garbage.MissesRate());
  }
}

TEST(FrameClock, AStreamOfAnotherRateIsCounted) {
  for (const double rate : {30.0, 50.0, 24.0, 60.0, 23.976}) {
    FrameClock seconds, milliseconds;
    for (int64_t frame = 0; frame < 500; ++frame) {
      if (rate != 50.0) {  // every second frame of twice the rate would be believed
        ASSERT_EQ(seconds.Next(frame / rate, 25.0), frame) << rate << ", seconds";
      }
      ASSERT_EQ(milliseconds.Next(frame * 1000.0 / rate, 25.0), frame) << rate << ", milliseconds";
    }
  }
}

}  // namespace
}  // namespace kelto::frei0r
