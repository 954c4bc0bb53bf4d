// Hosts that ask for regions that make no sense.
#include <gtest/gtest.h>

#include "tests/support/instance.h"

namespace kelto {
namespace {

using test::Instance;
using test::Picture;

TEST(ARegion, WhoseBoundsLieTheWrongWayRoundIsEmptyHoweverFarApartTheyAre) {
  Instance instance;
  Picture input(51, 3, hfxColorspaceRGB), output(51, 3, hfxColorspaceRGB);
  hfx::SetInput(instance, 0, input.image());
  hfx::SetOutput(instance, 0, output.image());
  const std::vector<uint8_t> before = output.Packed();
  for (const hfxRect& region :
       {hfxRect{0, 909553840, 50, -1330597712}, hfxRect{INT32_MAX, 0, INT32_MIN, 2},
        hfxRect{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}, hfxRect{1, 0, 0, 2}}) {
    EXPECT_TRUE(instance.RenderFrame(region));
    EXPECT_EQ(output.Packed(), before);
    EXPECT_TRUE(output.GuardsIntact());
  }
}

TEST(ARegion, ThatReachesBeyondTheOutputIsCutToIt) {
  Instance instance;
  Picture input(51, 3, hfxColorspaceRGB, 5), output(51, 3, hfxColorspaceRGB, 5);
  hfx::SetInput(instance, 0, input.image());
  hfx::SetOutput(instance, 0, output.image());
  EXPECT_TRUE(instance.RenderFrame({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}));
  EXPECT_TRUE(output.GuardsIntact());
}

}  // namespace
}  // namespace kelto
