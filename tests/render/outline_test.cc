#include "render/outline.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/instance.h"

namespace kelto {
namespace {

using test::Picture;

void Fill(Picture& picture, uint8_t value) {
  for (int32_t y = 0; y < picture.image()->GetHeight(); ++y) {
    const int32_t bytes = picture.image()->GetColorspace() == hfxColorspaceRGB ? 4 : 2;
    std::memset(picture.row(y), value, static_cast<size_t>(picture.image()->GetWidth()) * bytes);
  }
}

TEST(Outline, The422LineShiftsLumaBy70AndLeavesChromaAlone) {
  for (const auto& [below, shifted] : {std::pair{100, 170}, {189, 255}, {190, 120}, {250, 180}}) {
    Picture picture(8, 8, hfxColorspaceYCbCr, 6);
    Fill(picture, static_cast<uint8_t>(below));
    DrawFrameOutline(*picture.image(), hfxColorspaceYCbCr, {1, 1, 6, 6}, kOutlineThin, 0);
    for (int32_t i = 0; i < 8; ++i) {
      const bool onEdge = i >= 1 && i <= 6;
      EXPECT_EQ(picture.row(1)[2 * i], onEdge ? shifted : below);
      EXPECT_EQ(picture.row(6)[2 * i], onEdge ? shifted : below);
      EXPECT_EQ(picture.row(i)[2 * 1], onEdge ? shifted : below) << "column, row " << i;
      EXPECT_EQ(picture.row(1)[2 * i + 1], below);
    }
    EXPECT_EQ(picture.row(3)[2 * 3], below) << "inside";
    EXPECT_TRUE(picture.GuardsIntact());
  }
}

TEST(Outline, TheRgbLinePaints235InAllFourBytes) {
  Picture picture(6, 6, hfxColorspaceRGB, 4, true);
  Fill(picture, 7);
  DrawFrameOutline(*picture.image(), hfxColorspaceRGB, {0, 0, 5, 5}, kOutlineThin, 0);
  for (int byte = 0; byte < 4; ++byte) {
    EXPECT_EQ(picture.row(0)[4 * 3 + byte], 235);
    EXPECT_EQ(picture.row(3)[byte], 235);
    EXPECT_EQ(picture.row(3)[4 * 3 + byte], 7);
  }
  EXPECT_TRUE(picture.GuardsIntact());
}

TEST(Outline, ThickLinesAreTwoPixelsAndNoCornerIsShiftedTwice) {
  Picture picture(12, 12, hfxColorspaceYCbCr);
  Fill(picture, 150);  // shifted twice it would come back to 150
  DrawFrameOutline(*picture.image(), hfxColorspaceYCbCr, {2, 2, 8, 8}, kOutlineThick, 0);
  for (int32_t y = 0; y < 12; ++y) {
    for (int32_t x = 0; x < 12; ++x) {
      const auto line = [](int32_t i) { return i == 2 || i == 3 || i == 8 || i == 9; };
      const auto along = [](int32_t i) { return i >= 2 && i <= 9; };
      const bool marked = (line(x) && along(y)) || (line(y) && along(x));
      EXPECT_EQ(picture.row(y)[2 * x], marked ? 220 : 150) << x << ',' << y;
    }
  }
}

TEST(Outline, ThickLinesOfARectangleOneRowOrColumnWideAreShiftedOnce) {
  const auto band = [](int32_t i) { return i == 5 || i == 6; };
  const auto along = [](int32_t i) { return i >= 2 && i <= 9; };
  for (const bool oneRow : {true, false}) {
    Picture picture(12, 12, hfxColorspaceYCbCr);
    Fill(picture, 150);  // shifted twice it would come back to 150
    const OutlineRect rect = oneRow ? OutlineRect{2, 5, 8, 5} : OutlineRect{5, 2, 5, 8};
    DrawFrameOutline(*picture.image(), hfxColorspaceYCbCr, rect, kOutlineThick, 0);
    for (int32_t y = 0; y < 12; ++y) {
      for (int32_t x = 0; x < 12; ++x) {
        const bool marked = oneRow ? band(y) && along(x) : band(x) && along(y);
        EXPECT_EQ(picture.row(y)[2 * x], marked ? 220 : 150) << x << ',' << y;
      }
    }
  }
}

TEST(Outline, CoordinatesAreRoundedDownAndClippedToTheImage) {
  Picture picture(10, 10, hfxColorspaceYCbCr, 10);
  Fill(picture, 100);
  DrawFrameOutline(*picture.image(), hfxColorspaceYCbCr, {-50.5, 2.9, 1e12, 7.9}, kOutlineThin, 0);
  EXPECT_EQ(picture.row(2)[0], 170);
  EXPECT_EQ(picture.row(7)[2 * 9], 170);
  EXPECT_EQ(picture.row(5)[0], 170);
  EXPECT_EQ(picture.row(5)[2 * 9], 170);
  EXPECT_EQ(picture.row(8)[0], 100);
  DrawFrameOutline(*picture.image(), hfxColorspaceYCbCr, {NAN, NAN, INFINITY, -INFINITY},
                   kOutlineThick, 0);
  EXPECT_TRUE(picture.GuardsIntact());
}

TEST(Outline, TheActionSafeFrameLiesFivePercentInsideOnEverySide) {
  const OutlineRect safe = ActionSafeRect({0, 0, 99, 199});
  EXPECT_DOUBLE_EQ(safe.left, 5.0);
  EXPECT_DOUBLE_EQ(safe.right, 94.0);
  EXPECT_DOUBLE_EQ(safe.top, 10.0);
  EXPECT_DOUBLE_EQ(safe.bottom, 189.0);
}

TEST(Outline, TheViewIsTheFrameShrunkByTheZoomAndMovedByTheCentre) {
  const OutlineRect view = ViewRect(200, 100, 2.0, 0.1, -0.2);
  EXPECT_DOUBLE_EQ(view.left, 50.0 + 20.0);
  EXPECT_DOUBLE_EQ(view.right, 149.0 + 20.0);
  EXPECT_DOUBLE_EQ(view.top, 25.0 - 20.0);
  EXPECT_DOUBLE_EQ(view.bottom, 74.0 - 20.0);
}

}  // namespace
}  // namespace kelto
