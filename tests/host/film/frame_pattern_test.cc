#include "host/film/frame_pattern.h"

#include <gtest/gtest.h>

#include <optional>

#include "host/base/error.h"

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

TEST(FramePattern, FindsTheNumberInAName) {
  const FramePattern pattern("out/a%%b-%04d.png");
  EXPECT_EQ(pattern.NumberOf("a%b-0007.png"), 7);
  EXPECT_EQ(pattern.NumberOf("a%b-12345.png"), 12345);
  EXPECT_EQ(pattern.NumberOf("A%B-0007.PNG"), 7) << "some file systems know no case";
  for (const char* other : {"a%b-.png", "a%b-+007.png", "a%b-0007.jpg", "x%b-0007.png", "a%b-0007",
                            "a%b-00x7.png", "a%b-99999999999.png", "7", ""}) {
    EXPECT_EQ(pattern.NumberOf(other), std::nullopt) << other;
  }
  EXPECT_EQ(FramePattern("still.png").NumberOf("still.png"), std::nullopt);
}

TEST(FramePattern, KnowsItsFolder) {
  EXPECT_EQ(FramePattern("a/b/%d.png").Folder(), "a/b/");
  EXPECT_EQ(FramePattern("%d.png").Folder(), ".");
}

TEST(FramePattern, RefusesWhatAFormattingFunctionWouldTake) {
  for (const char* text : {"%s.png", "%n", "%", "a%", "%4d.png", "%x", "%0d.png", "%00d.png",
                           "%012d.png", "%ld", "%*d", "%1$d", "%d-%d.png", "%04d%04d.png", "%04"}) {
    EXPECT_THROW(FramePattern{text}, UsageError) << text;
  }
}

}  // namespace
}  // namespace kelto::host
