#include "host/options/colour.h"

#include <gtest/gtest.h>

#include "host/base/error.h"

namespace kelto::host {
namespace {

TEST(Colour, ReadsRedGreenBlueInHexadecimal) {
  EXPECT_EQ(ParseColour("#ff8001"), (Colour{255, 128, 1}));
  EXPECT_EQ(ParseColour("#FF8001"), (Colour{255, 128, 1}));
}

TEST(Colour, NeedsNoHashWhichShellsTakeForAComment) {
  EXPECT_EQ(ParseColour("00ff00"), (Colour{0, 255, 0}));
}

TEST(Colour, RefusesWhatIsNotSixDigits) {
  for (const char* text :
       {"", "#", "#fff", "#ff80011", "red", "#gg0000", "##ff000", "-ff000", "0x1234", "#12 456"}) {
    EXPECT_THROW(ParseColour(text), UsageError) << text;
  }
}

}  // namespace
}  // namespace kelto::host
