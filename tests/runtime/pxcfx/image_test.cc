#include <gtest/gtest.h>

#include <vector>

#include "platform/pxcfx.h"

namespace kelto {
namespace {

TEST(PixelImage, RowsArePackedUntilARowDeltaIsGiven) {
  std::vector<uint8_t> pixels(64);
  const pxcImage bgra(3, 2, "BGRA", pixels.data(), pxcComponent8U, pxcColorSpaceRGB);
  EXPECT_EQ(bgra.row(1) - bgra.row(0), 12);
  const pxcImage packed(3, 2, "Y422", pixels.data(), pxcComponent8U, pxcColorSpaceYCbCr);
  EXPECT_EQ(packed.row(1) - packed.row(0), 6);
}

TEST(PixelImage, ARowDeltaMayBePaddedOrRunUpwards) {
  std::vector<uint8_t> pixels(64);
  pxcImage image(3, 2, "BGRA", pixels.data(), pxcComponent8U, pxcColorSpaceRGB);
  image.SetPixelArray(pixels.data() + 40, -20);
  EXPECT_EQ(image.row(0), pixels.data() + 40);
  EXPECT_EQ(image.row(1), pixels.data() + 20);
}

TEST(PixelImage, SetResChangesTheSizeAndKeepsTheRows) {
  std::vector<uint8_t> pixels(64);
  pxcImage image(3, 2, "BGRA", pixels.data(), pxcComponent8U, pxcColorSpaceRGB);
  image.SetRes(2, 1);
  EXPECT_EQ(image.width(), 2);
  EXPECT_EQ(image.height(), 1);
  EXPECT_EQ(image.row(1) - image.row(0), 12);
}

TEST(PixelImage, AnOverlongLayoutTagIsCutToFourCharacters) {
  const pxcImage image(1, 1, "BGRAX", nullptr, pxcComponent8U, pxcColorSpaceRGB);
  EXPECT_STREQ(image.layout(), "BGRA");
}

}  // namespace
}  // namespace kelto
