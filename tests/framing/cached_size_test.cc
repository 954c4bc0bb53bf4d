#include "framing/cached_size.h"

#include <gtest/gtest.h>

#include "platform/hfx.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

constexpr PixelSize kVideo = {720, 486};

TEST(CachedSize, AFinalRenderKeepsAPictureOfAnySize) {
  EXPECT_TRUE(KeepsNaturalSize(hfxPlayModeRender, {4000, 3000}, kVideo));
  EXPECT_FALSE(KeepsNaturalSize(hfxPlayModePreview, {4000, 3000}, kVideo));
}

TEST(CachedSize, AnOutputOfUnknownSizeKeepsIt) {
  EXPECT_TRUE(KeepsNaturalSize(hfxPlayModePreview, {4000, 3000}, {0, 486}));
  EXPECT_TRUE(KeepsNaturalSize(hfxPlayModePreview, {4000, 3000}, {720, 0}));
}

TEST(CachedSize, APictureIsKeptBelowTheOutputLessOnePixelBothWays) {
  EXPECT_TRUE(KeepsNaturalSize(hfxPlayModePreview, {718, 484}, kVideo));
  EXPECT_FALSE(KeepsNaturalSize(hfxPlayModePreview, {719, 484}, kVideo));
  EXPECT_FALSE(KeepsNaturalSize(hfxPlayModePreview, {718, 485}, kVideo));
}

TEST(CachedSize, NoPictureIsTooSmallToBeReducedForAnOutputOfOnePixel) {
  EXPECT_FALSE(KeepsNaturalSize(hfxPlayModePreview, {1, 1}, {1, 1}));
}

TEST(CachedSize, LandscapePicturesTakeTheWidthAndOthersTheHeight) {
  EXPECT_EQ(ReducedSize({1000, 900}, kVideo), (PixelSize{720, 648})) << "taller than the output";
  EXPECT_EQ(ReducedSize({800, 2000}, kVideo), (PixelSize{194, 486}));
  EXPECT_EQ(ReducedSize({600, 600}, kVideo), (PixelSize{486, 486}));
  EXPECT_EQ(ReducedSize({30000, 10}, kVideo), (PixelSize{720, 1})) << "no side below 1";
}

TEST(CachedSize, AgreesWithTheReferenceSizes) {
  for (const auto& c : test::Vectors()["reduced_sizes"]) {
    EXPECT_EQ(ReducedSize({c["width"], c["height"]}, {c["output_width"], c["output_height"]}),
              (PixelSize{c["new_width"], c["new_height"]}));
  }
}

}  // namespace
}  // namespace kelto
