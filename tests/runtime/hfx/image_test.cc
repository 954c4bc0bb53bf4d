#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <stdexcept>

#include "runtime/hfx/host.h"

namespace kelto {
namespace {

using testing::Each;

TEST(Image, StepsFromRowToRowByItsOwnDelta) {
  uint8_t bytes[4 * 20] = {};
  const hfxImage padded(4, 4, bytes, 20, hfxColorspaceRGB, hfxImgFormatBGRA);
  EXPECT_EQ(padded.GetRowPtr(0), bytes);
  EXPECT_EQ(padded.GetRowPtr(3), bytes + 60);
  EXPECT_EQ(padded.GetRowDelta(), 20);

  const hfxImage bottomUp(4, 4, bytes + 60, -20, hfxColorspaceRGB, hfxImgFormatBGRA);
  EXPECT_EQ(bottomUp.GetRowPtr(0), bytes + 60);
  EXPECT_EQ(bottomUp.GetRowPtr(3), bytes);
}

TEST(Image, TellsItsChannelsByColourSpace) {
  const hfxImage rgb(2, 1, nullptr, 8, hfxColorspaceRGB, hfxImgFormatBGRA);
  const hfxImage packed(2, 1, nullptr, 4, hfxColorspaceYCbCr, hfxImgFormatYCbYCr);
  const hfxImage foreign(2, 1, nullptr, 4, 77, 78);
  EXPECT_EQ(rgb.GetNumChannels(), 4);
  EXPECT_EQ(packed.GetNumChannels(), 2);
  EXPECT_EQ(foreign.GetNumChannels(), 0);
  EXPECT_EQ(rgb.GetChannelSize(), 8);
  EXPECT_EQ(packed.GetChannelType(0), 0);
  EXPECT_EQ(packed.GetImgFormat(), hfxImgFormatYCbYCr);
  EXPECT_EQ(foreign.GetColorspace(), 77);
  EXPECT_EQ(foreign.GetImgFormat(), 78);
}

TEST(Image, TakesNegativeSizesForNothing) {
  const hfxImage image(-5, -1, nullptr, 0, hfxColorspaceRGB, hfxImgFormatBGRA);
  EXPECT_EQ(image.GetWidth(), 0);
  EXPECT_EQ(image.GetHeight(), 0);
}

TEST(ImageBuffer, HoldsBlackPixelsWithoutPaddingUnlessAsked) {
  hfx::ImageBuffer rgb(3, 2, hfxColorspaceRGB);
  EXPECT_EQ(rgb.bytes().size(), 24u);
  EXPECT_EQ(rgb.image()->GetRowDelta(), 12);
  EXPECT_EQ(rgb.image()->GetImgFormat(), hfxImgFormatBGRA);
  EXPECT_THAT(std::vector<uint8_t>(rgb.bytes().begin(), rgb.bytes().begin() + 4),
              testing::ElementsAre(0, 0, 0, 255));

  hfx::ImageBuffer packed(3, 2, hfxColorspaceYCbCr);
  EXPECT_EQ(packed.bytes().size(), 12u);
  EXPECT_EQ(packed.image()->GetImgFormat(), hfxImgFormatYCbYCr);
  EXPECT_THAT(packed.bytes(),
              testing::ElementsAre(16, 128, 16, 128, 16, 128, 16, 128, 16, 128, 16, 128));
}

TEST(ImageBuffer, PadsRowsAndLaysThemBottomUpWhenAsked) {
  hfx::ImageBuffer buffer(2, 3, hfxColorspaceRGB, {.bytes = 32, .bottomUp = true});
  const hfxImage& image = *buffer.image();
  ASSERT_EQ(buffer.bytes().size(), 96u);
  EXPECT_EQ(image.GetRowDelta(), -32);
  EXPECT_EQ(image.GetRowPtr(0), buffer.bytes().data() + 64);
  EXPECT_EQ(image.GetRowPtr(2), buffer.bytes().data());
  const std::vector<uint8_t> padding(image.GetRowPtr(1) + 8, image.GetRowPtr(1) + 32);
  EXPECT_THAT(padding, Each(0));
}

TEST(ImageBuffer, MayBeEmpty) {
  hfx::ImageBuffer buffer(0, 0, hfxColorspaceRGB, {.bytes = 16, .bottomUp = true});
  EXPECT_EQ(buffer.image()->GetWidth(), 0);
  EXPECT_TRUE(buffer.bytes().empty());
}

TEST(ImageBuffer, RefusesWhatItCannotHold) {
  EXPECT_THROW(hfx::ImageBuffer(2, 2, 5), std::invalid_argument);
  EXPECT_THROW(hfx::ImageBuffer(-2, 2, hfxColorspaceRGB), std::invalid_argument);
  const int32_t largest = std::numeric_limits<int32_t>::max();
  EXPECT_THROW(hfx::ImageBuffer(largest, largest, hfxColorspaceRGB), std::bad_alloc);
}

TEST(FieldView, TakesEverySecondRowOfAFrame) {
  hfx::ImageBuffer frame(2, 5, hfxColorspaceRGB, {.bytes = 12, .bottomUp = true});
  const hfxImage top = hfx::FieldView(*frame.image(), true);
  const hfxImage bottom = hfx::FieldView(*frame.image(), false);
  EXPECT_EQ(top.GetHeight(), 3);
  EXPECT_EQ(bottom.GetHeight(), 2);
  EXPECT_EQ(top.GetRowPtr(2), frame.image()->GetRowPtr(4));
  EXPECT_EQ(bottom.GetRowPtr(1), frame.image()->GetRowPtr(3));
  EXPECT_EQ(top.GetWidth(), 2);
  EXPECT_EQ(top.GetImgFormat(), hfxImgFormatBGRA);
}

TEST(FieldView, OfASingleRowLeavesTheSecondFieldEmpty) {
  hfx::ImageBuffer frame(2, 1, hfxColorspaceRGB);
  EXPECT_EQ(hfx::FieldView(*frame.image(), true).GetHeight(), 1);
  EXPECT_EQ(hfx::FieldView(*frame.image(), false).GetHeight(), 0);
}

}  // namespace
}  // namespace kelto
