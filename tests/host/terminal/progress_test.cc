#include "host/terminal/progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelto::host {
namespace {

TEST(Progress, PaceIsWhatWasDoneInTheTimeAndTheRestAtTheSameRate) {
  const Pace pace = PaceOf(50, 200, 2.0);
  EXPECT_DOUBLE_EQ(pace.perSecond, 25.0);
  EXPECT_DOUBLE_EQ(pace.secondsLeft, 6.0);
}

TEST(Progress, NothingDoneGivesNoRate) {
  EXPECT_EQ(PaceOf(0, 10, 3.0).perSecond, 0.0);
  EXPECT_EQ(PaceOf(5, 10, 0.0).secondsLeft, 0.0);
}

TEST(Progress, BarsTellShareRateAndTimeLeft) {
  EXPECT_EQ(BarText(PaceOf(125, 250, 5.0), "frame"),
            "[==========          ]  50 %  frame 125 of 250  25.0/s  0:05 left");
  EXPECT_EQ(BarText(PaceOf(250, 250, 5.0), "frame"),
            "[====================] 100 %  frame 250 of 250  50.0/s  0:00 left");
  EXPECT_THAT(BarText(PaceOf(1, 3601, 1.0), "film"), testing::HasSubstr("1:00:00 left"));
}

TEST(Progress, CountsWhatIsUnderWayByItsShare) {
  EXPECT_EQ(BarText(PaceOf(2.5, 10, 5.0), "film"),
            "[=====               ]  25 %  film 2 of 10  30.0/min  0:15 left");
  EXPECT_EQ(BarText(PaceOf(0.0, 10, 5.0), "film"), "[                    ]   0 %  film 0 of 10");
}

TEST(Progress, TheLongestBarFitsOnATerminal) {
  EXPECT_LE(BarText(PaceOf(9'999'999, 10'000'000, 100.0), "frame").size(), 79u);
  EXPECT_LE(BarText(PaceOf(1, 10'000'000, 1.0), "frame").size(), 79u);
}

TEST(Progress, PlainLinesTellTheSame) {
  EXPECT_EQ(PlainText(PaceOf(125, 250, 5.0), "frame"),
            "frame 125 of 250, 25.0 per second, 5 s left");
}

}  // namespace
}  // namespace kelto::host
