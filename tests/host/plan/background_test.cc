#include <gtest/gtest.h>

#include "host/plan/render_plan.h"

namespace kelto::host {
namespace {

/// The byte that the effect makes of a channel: it cuts the fraction off.
int ByteOf(double channel) { return static_cast<int>(channel * 255.0); }

TEST(Background, ReachesTheEffectInStudioLevels) {
  for (int level = 0; level < 256; ++level) {
    const uint8_t byte = static_cast<uint8_t>(level);
    const auto rgb = BackgroundFor({byte, 0, 255});
    EXPECT_EQ(ByteOf(rgb[0]), static_cast<int>(level * 219 / 255.0 + 16.5)) << level;
    EXPECT_EQ(ByteOf(rgb[1]), 16);
    EXPECT_EQ(ByteOf(rgb[2]), 235);
  }
}

TEST(Background, IsSeenAsTheColourThatWasAskedFor) {
  for (int level = 0; level < 256; ++level) {
    const uint8_t byte = static_cast<uint8_t>(level);
    const Colour seen = ColourOf(BackgroundFor({byte, 0, 255}));
    // Studio range has fewer levels.
    EXPECT_NEAR(seen.red, level, 1) << level;
    EXPECT_EQ(seen.green, 0);
    EXPECT_EQ(seen.blue, 255);
  }
}

}  // namespace
}  // namespace kelto::host
