#include "editor/rules/time_axis.h"

#include <gtest/gtest.h>

namespace kelto::editor {
namespace {

TEST(TimeAxis, FitsTheFilm) {
  const TimeAxis axis = FittedAxis(10.0, 20.0, 500.0);
  EXPECT_DOUBLE_EQ(axis.ToX(0.0), 20.0);
  EXPECT_DOUBLE_EQ(axis.ToX(10.0), 520.0);
  EXPECT_DOUBLE_EQ(axis.ToSeconds(270.0), 5.0);
}

TEST(TimeAxis, ZoomsAboutThePointer) {
  const TimeAxis axis = FittedAxis(10.0, 20.0, 500.0);
  const TimeAxis zoomed = ZoomedAxis(axis, 270.0, 4.0, 10.0, 0.04, 500.0);
  EXPECT_DOUBLE_EQ(zoomed.pixelsPerSecond, 200.0);
  EXPECT_DOUBLE_EQ(zoomed.ToSeconds(270.0), 5.0);
}

TEST(TimeAxis, ShowsNoTimeBesideTheFilm) {
  const TimeAxis axis = FittedAxis(10.0, 20.0, 500.0);
  EXPECT_EQ(ZoomedAxis(axis, 100.0, 0.1, 10.0, 0.04, 500.0), axis);
  const TimeAxis zoomed = ZoomedAxis(axis, 20.0, 2.0, 10.0, 0.04, 500.0);
  EXPECT_DOUBLE_EQ(MovedAxis(zoomed, -1e6, 10.0, 500.0).begin, 5.0);
  EXPECT_DOUBLE_EQ(MovedAxis(zoomed, 1e6, 10.0, 500.0).begin, 0.0);
  EXPECT_DOUBLE_EQ(ZoomedAxis(axis, 20.0, 1e9, 10.0, 0.04, 500.0).pixelsPerSecond, 1000.0);
}

}  // namespace
}  // namespace kelto::editor
