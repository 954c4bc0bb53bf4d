#include "host/options/frame_range.h"

#include <gtest/gtest.h>

#include "host/base/error.h"

namespace kelto::host {
namespace {

TEST(FrameRange, ATextWithTwoDotsIsOne) {
  EXPECT_TRUE(IsFrameRange("0..50"));
  EXPECT_TRUE(IsFrameRange("..")) << "a complaint about it should speak of parts";
  EXPECT_FALSE(IsFrameRange("50"));
  EXPECT_FALSE(IsFrameRange("0.50"));
}

TEST(FrameRange, ItsEndIsTheNextPartsBeginning) {
  EXPECT_EQ(ParseFrameRange("0..50", 100), (FrameRange{0, 50}));
  EXPECT_EQ(ParseFrameRange("50..100", 100), (FrameRange{50, 100}));
  EXPECT_EQ(ParseFrameRange("99..100", 100).Count(), 1);
}

TEST(FrameRange, OthersAreRefused) {
  for (const char* text : {"", "5", "..", "5..", "..5", "a..b", "1...3", "1..2..3", "-1..5", "5..5",
                           "6..5", "0..101", "0..99999999999999999999"}) {
    EXPECT_THROW(ParseFrameRange(text, 100), UsageError) << text;
  }
}

}  // namespace
}  // namespace kelto::host
