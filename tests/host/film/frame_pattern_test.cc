#include "host/film/frame_pattern.h"

#include <gtest/gtest.h>

#include "host/error.h"

namespace kelto::host {
namespace {

TEST(FramePattern, PutsTheNumberInItsPlace) {
  EXPECT_EQ(FramePattern("frame-%04d.png").PathOf(7), "frame-0007.png");
  EXPECT_EQ(FramePattern("%d").PathOf(0), "0");
  EXPECT_EQ(FramePattern("out/%03dx.png").PathOf(12), "out/012x.png");
}

TEST(FramePattern, NumbersGrowPastTheirDigits) {
  EXPECT_EQ(FramePattern("%02d.png").PathOf(12345), "12345.png");
}

TEST(FramePattern, WithoutAPlaceNamesOnePicture) {
  const FramePattern pattern("still.png");
  EXPECT_FALSE(pattern.Numbered());
  EXPECT_EQ(pattern.PathOf(3), "still.png");
}

TEST(FramePattern, TwoPercentSignsAreOne) {
  EXPECT_EQ(FramePattern("100%%-%d.png").PathOf(5), "100%-5.png");
  EXPECT_EQ(FramePattern("%d-100%%.png").PathOf(5), "5-100%.png");
}

TEST(FramePattern, FoldersAreTakenAsTheyStand) {
  EXPECT_EQ(FramePattern("50%s/%n/f%d.png").PathOf(1), "50%s/%n/f1.png");
}

TEST(FramePattern, RefusesWhatAFormattingFunctionWouldTake) {
  for (const char* text : {"%s.png", "%n", "%", "a%", "%4d.png", "%x", "%0d.png", "%00d.png",
                           "%012d.png", "%ld", "%*d", "%1$d", "%d-%d.png", "%04d%04d.png", "%04"}) {
    EXPECT_THROW(FramePattern{text}, UsageError) << text;
  }
}

}  // namespace
}  // namespace kelto::host
