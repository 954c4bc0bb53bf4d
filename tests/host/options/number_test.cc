#include "host/options/number.h"

#include <gtest/gtest.h>

namespace kelto::host {
namespace {

TEST(Number, ReadsDecimalNumbersThatFillTheText) {
  EXPECT_EQ(ParseNumber("2"), 2.0);
  EXPECT_EQ(ParseNumber("-0.25"), -0.25);
  EXPECT_EQ(ParseNumber("1e3"), 1000.0);
  EXPECT_EQ(ParseNumber(".5"), 0.5);
}

TEST(Number, RefusesWhatIsNotJustAFiniteNumber) {
  for (const char* text : {"", " 1", "1 ", "1x", "1,5", "nan", "inf", "-inf", "1e999", "0x10"}) {
    EXPECT_FALSE(ParseNumber(text)) << text;
  }
}

TEST(Number, ReadsWholeNumbersOnlyWithoutAFraction) {
  EXPECT_EQ(ParseWhole("125"), 125);
  EXPECT_EQ(ParseWhole("-5"), -5);
  for (const char* text : {"", "1.0", "1e2", "0x10", "99999999999999999999", "five"}) {
    EXPECT_FALSE(ParseWhole(text)) << text;
  }
}

}  // namespace
}  // namespace kelto::host
