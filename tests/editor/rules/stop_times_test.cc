#include "editor/rules/stop_times.h"

#include <gtest/gtest.h>

#include <random>

namespace kelto::editor {
namespace {

/// 0..1 held, way to 3, held to 5, way to 6, the last view not held.
const StopTimes kThree = {{1.0, 2.0}, {2.0, 1.0}, {0.0, 0.0}};
constexpr double kFrame = 0.04;

TEST(StopTimes, FollowEachOther) {
  EXPECT_DOUBLE_EQ(ArrivalOf(kThree, 0), 0.0);
  EXPECT_DOUBLE_EQ(ArrivalOf(kThree, 1), 3.0);
  EXPECT_DOUBLE_EQ(ArrivalOf(kThree, 2), 6.0);
  EXPECT_DOUBLE_EQ(LengthOf(kThree), 6.0);
  EXPECT_DOUBLE_EQ(LengthOf(StopTimes{}), 0.0);
}

TEST(EdgeAt, FindsTheNearest) {
  EXPECT_EQ(EdgeAt(kThree, 1.05, 0.1), (TimeEdge{0, true}));
  EXPECT_EQ(EdgeAt(kThree, 2.95, 0.1), (TimeEdge{1, false}));
  EXPECT_EQ(EdgeAt(kThree, 4.95, 0.1), (TimeEdge{1, true}));
  EXPECT_FALSE(EdgeAt(kThree, 2.0, 0.1));
  EXPECT_FALSE(EdgeAt(kThree, 0.0, 0.1)) << "the beginning of the film cannot be dragged";
}

TEST(EdgeAt, TellsArrivalFromDepartureOfAStopThatIsNotHeld) {
  EXPECT_EQ(EdgeAt(kThree, 5.95, 0.1), (TimeEdge{2, false}));
  EXPECT_EQ(EdgeAt(kThree, 6.05, 0.1), (TimeEdge{2, true}));
}

TEST(EdgeDragged, MovesTimeFromOneSideToTheOther) {
  const StopTimes later = EdgeDragged(kThree, {0, true}, 1.6, false, kFrame);
  EXPECT_NEAR(later[0].hold, 1.6, 1e-9);
  EXPECT_NEAR(later[0].go, 1.4, 1e-9);
  EXPECT_NEAR(LengthOf(later), 6.0, 1e-9);
  const StopTimes sooner = EdgeDragged(kThree, {1, false}, 2.0, false, kFrame);
  EXPECT_NEAR(sooner[0].go, 1.0, 1e-9);
  EXPECT_NEAR(sooner[1].hold, 3.0, 1e-9);
}

TEST(EdgeDragged, MovesAllThatFollowsWithCtrl) {
  const StopTimes later = EdgeDragged(kThree, {0, true}, 1.6, true, kFrame);
  EXPECT_NEAR(later[0].hold, 1.6, 1e-9);
  EXPECT_NEAR(later[0].go, 2.0, 1e-9);
  EXPECT_NEAR(LengthOf(later), 6.6, 1e-9);
}

TEST(EdgeDragged, MakesTheFilmLongerAtItsEnd) {
  EXPECT_NEAR(LengthOf(EdgeDragged(kThree, {2, true}, 8.0, false, kFrame)), 8.0, 1e-9);
}

TEST(EdgeDragged, GoesInWholeFrames) {
  EXPECT_NEAR(EdgeDragged(kThree, {0, true}, 1.613, false, kFrame)[0].hold, 1.6, 1e-9);
}

TEST(EdgeDragged, LeavesTheBeginningAlone) {
  EXPECT_EQ(EdgeDragged(kThree, {0, false}, 2.0, false, kFrame), kThree);
  EXPECT_EQ(EdgeDragged(kThree, {7, true}, 2.0, false, kFrame), kThree);
}

TEST(EdgeDragged, NeverMakesAWayOrAFilmOfNoTime) {
  std::mt19937 random(4);
  const auto number = [&](double from, double to) {
    return std::uniform_real_distribution(from, to)(random);
  };
  for (int round = 0; round < 5000; ++round) {
    StopTimes times(1 + round % 5);
    for (StopTime& time : times) time = {number(0.0, 3.0), number(kFrame, 3.0)};
    if (times.size() == 1) times[0].hold += kFrame;
    const TimeEdge edge{random() % times.size(), random() % 2 == 0};
    const bool ripple = random() % 2 == 0;
    const StopTimes dragged = EdgeDragged(times, edge, number(-2.0, 20.0), ripple, kFrame);
    ASSERT_EQ(dragged.size(), times.size());
    for (size_t stop = 0; stop < dragged.size(); ++stop) {
      ASSERT_GE(dragged[stop].hold, -1e-9);
      ASSERT_TRUE(stop + 1 == dragged.size() || dragged[stop].go >= kFrame - 1e-9);
    }
    ASSERT_GE(LengthOf(dragged), kFrame - 1e-9);
    const bool end = edge.departure && edge.stop + 1 == times.size();
    if (ripple || end) continue;
    ASSERT_NEAR(LengthOf(dragged), LengthOf(times), 1e-9);
  }
}

}  // namespace
}  // namespace kelto::editor
