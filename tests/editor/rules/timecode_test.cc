#include "editor/rules/timecode.h"

#include <gtest/gtest.h>

namespace kelto::editor {
namespace {

TEST(Timecode, CountsFramesWithinSeconds) {
  EXPECT_EQ(Timecode(0, {25, 1}), "00:00:00:00");
  EXPECT_EQ(Timecode(24, {25, 1}), "00:00:00:24");
  EXPECT_EQ(Timecode(25, {25, 1}), "00:00:01:00");
  EXPECT_EQ(Timecode(25 * 3725 + 7, {25, 1}), "01:02:05:07");
}

TEST(Timecode, CountsEveryFrameOfRatesBetweenIntegers) {
  EXPECT_EQ(Timecode(29, {30000, 1001}), "00:00:00:29");
  EXPECT_EQ(Timecode(30, {30000, 1001}), "00:00:01:00");
  EXPECT_EQ(Timecode(3, {1, 2}), "00:00:03:00");
}

TEST(SecondsText, HasNoMoreDecimalsThanItNeeds) {
  EXPECT_EQ(SecondsText(2.0), "2 s");
  EXPECT_EQ(SecondsText(2.5), "2.5 s");
  EXPECT_EQ(SecondsText(0.04), "0.04 s");
  EXPECT_EQ(SecondsText(10.0), "10 s");
}

}  // namespace
}  // namespace kelto::editor
