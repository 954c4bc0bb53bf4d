#include "editor/rules/film_way.h"

#include <gtest/gtest.h>

namespace kelto::editor {
namespace {

WaySample At(double seconds, double x) { return {seconds, {x, 0.0, 100.0, 50.0}, 0.0}; }

TEST(ViewAt, GoesEvenlyBetweenSamples) {
  const FilmWay way = {At(0.0, 0.0), At(1.0, 10.0), At(2.0, 50.0)};
  EXPECT_DOUBLE_EQ(ViewAt(way, 1.5).x, 30.0);
  EXPECT_DOUBLE_EQ(ViewAt(way, 1.0).x, 10.0);
  EXPECT_DOUBLE_EQ(ViewAt(way, -3.0).x, 0.0);
  EXPECT_DOUBLE_EQ(ViewAt(way, 9.0).x, 50.0);
}

TEST(TickStep, IsARoundNumber) {
  EXPECT_NEAR(TickStep(1.0, 10), 0.1, 1e-12);
  EXPECT_NEAR(TickStep(1.1, 10), 0.2, 1e-12);
  EXPECT_NEAR(TickStep(5.0, 10), 0.5, 1e-12);
  EXPECT_NEAR(TickStep(60.0, 20), 5.0, 1e-9);
}

TEST(TicksOn, LieWhereTheViewIsAtEvenTimes) {
  const FilmWay way = {At(0.0, 0.0), At(1.0, 10.0), At(2.0, 50.0)};
  const std::vector<WayTick> ticks = TicksOn(way, 4);
  ASSERT_EQ(ticks.size(), 5u);
  EXPECT_DOUBLE_EQ(ticks[1].middle.x, 55.0);
  EXPECT_DOUBLE_EQ(ticks[3].middle.x, 80.0) << "closer together where the film is slow";
  EXPECT_DOUBLE_EQ(ticks[3].seconds, 1.5);
}

TEST(TicksOn, HaveNoneWhereNothingMoves) {
  EXPECT_TRUE(TicksOn(FilmWay{}, 10).empty());
  EXPECT_TRUE(TicksOn(FilmWay{At(0.0, 0.0)}, 10).empty());
  EXPECT_TRUE(TicksOn(FilmWay{At(0.0, 0.0), At(4.0, 0.0)}, 10).empty());
  const FilmWay rests = {At(0.0, 0.0), At(1.0, 10.0), At(3.0, 10.0)};
  EXPECT_EQ(TicksOn(rests, 3).size(), 2u) << "0 s and 1 s";
}

}  // namespace
}  // namespace kelto::editor
