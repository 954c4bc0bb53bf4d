#include "host/options/rate.h"

#include <gtest/gtest.h>

#include "host/base/error.h"

namespace kelto::host {
namespace {

TEST(Rate, ReadsWholeRates) {
  EXPECT_EQ(ParseRate("25"), (FrameRate{25, 1}));
  EXPECT_EQ(ParseRate("1000"), (FrameRate{1000, 1}));
}

TEST(Rate, ReadsFractionsAndReducesThem) {
  EXPECT_EQ(ParseRate("30000/1001"), (FrameRate{30000, 1001}));
  EXPECT_EQ(ParseRate("50/2"), (FrameRate{25, 1}));
  EXPECT_EQ(ParseRate("1/10"), (FrameRate{1, 10}));
}

TEST(Rate, ReadsTheShortFormsOfBroadcastRatesAsTheExactFractions) {
  EXPECT_EQ(ParseRate("29.97"), (FrameRate{30000, 1001}));
  EXPECT_EQ(ParseRate("29.970"), (FrameRate{30000, 1001}));
  EXPECT_EQ(ParseRate("23.976"), (FrameRate{24000, 1001}));
  EXPECT_EQ(ParseRate("23.98"), (FrameRate{24000, 1001}));
  EXPECT_EQ(ParseRate("59.94"), (FrameRate{60000, 1001}));
  EXPECT_EQ(ParseRate("119.88"), (FrameRate{120000, 1001}));
}

TEST(Rate, ReadsOtherDecimalsAsTheyStand) {
  EXPECT_EQ(ParseRate("12.5"), (FrameRate{25, 2}));
  EXPECT_EQ(ParseRate("25.00"), (FrameRate{25, 1}));
  EXPECT_EQ(ParseRate("29.9"), (FrameRate{299, 10}));
  EXPECT_EQ(ParseRate("29.96"), (FrameRate{749, 25}));
}

TEST(Rate, RefusesWhatIsNoRate) {
  for (const char* text :
       {"", "0", "-25", "0/1", "25/0", "25/", "/25", "1001", "1/11", "0.05", "fast", "25fps", "nan",
        "inf", "1.5e1", "29.9700001", "30000/1001/1", "9999999999999/1", "-29.97"}) {
    EXPECT_THROW(ParseRate(text), UsageError) << text;
  }
}

TEST(Length, CountsFramesOfSecondsToTheNearest) {
  EXPECT_EQ(FramesOf(5.0, {25, 1}), 125);
  EXPECT_EQ(FramesOf(1.0, {30000, 1001}), 30);
  EXPECT_EQ(FramesOf(60.0, {30000, 1001}), 1798);
}

TEST(Length, IsAtLeastOneFrame) { EXPECT_EQ(FramesOf(0.001, {25, 1}), 1); }

TEST(Length, HasAnEnd) {
  EXPECT_EQ(ParseFrames("10000000"), kMaxFrames);
  EXPECT_THROW(ParseFrames("10000001"), UsageError);
  EXPECT_THROW(FramesOf(1e6, {25, 1}), UsageError);
  EXPECT_THROW(FramesOf(1e300, {25, 1}), UsageError);
}

TEST(Length, IsAboveNothing) {
  for (const char* text : {"0", "-1", "", "1.5", "many"}) {
    EXPECT_THROW(ParseFrames(text), UsageError) << text;
  }
  for (const char* text : {"0", "-1", "", "nan", "long"}) {
    EXPECT_THROW(ParseSeconds(text), UsageError) << text;
  }
}

}  // namespace
}  // namespace kelto::host
