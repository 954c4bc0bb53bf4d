// The area of a frame, in numbers that can be worked out by hand. tests/host/preview holds it
// against rendered frames.
#include "framing/drawn_area.h"

#include <gtest/gtest.h>

#include "platform/hfx.h"

namespace kelto {
namespace {

/// A photo of four times the frame's sides and of its shape.
DrawnFrame LargePhoto() {
  DrawnFrame frame;
  frame.photo = {4000, 2000};
  frame.first = {1000, 500};
  frame.playMode = hfxPlayModeRender;
  frame.geometry.output = frame.first;
  frame.geometry.displayAspect = 2.0;
  return frame;
}

TEST(DrawnArea, ZoomOneShowsAPhotoOfTheFramesShapeWhole) {
  const DrawnArea area = AreaOf(LargePhoto(), View{});
  EXPECT_NEAR(area.left, 0, 1e-3);
  EXPECT_NEAR(area.top, 0, 1e-3);
  EXPECT_NEAR(area.right, 4000, 1e-3);
  EXPECT_NEAR(area.bottom, 2000, 1e-3);
  EXPECT_NEAR(area.scaleX, 4, 1e-5);
  EXPECT_NEAR(area.scaleY, 4, 1e-5);
}

TEST(DrawnArea, AViewIsAsLargeAsItsZoomSaysAndLiesAboutItsCentre) {
  const DrawnArea area = AreaOf(LargePhoto(), {8.0, 0.25, -0.25});
  EXPECT_NEAR(area.right - area.left, 500, 1e-2);
  EXPECT_NEAR(area.bottom - area.top, 250, 1e-2);
  EXPECT_NEAR((area.left + area.right) / 2, 3000, 1e-2);
  EXPECT_NEAR((area.top + area.bottom) / 2, 500, 1e-2);
}

TEST(DrawnArea, OnlyWhereTheFiltersReduceDoTheyLookAPixelAndAHalfFurtherOn) {
  EXPECT_EQ(AreaOf(LargePhoto(), {3.0, 0.0, 0.0}).stepX, 1.5);
  EXPECT_EQ(AreaOf(LargePhoto(), {3.0, 0.0, 0.0}).stepY, 1.5);
  EXPECT_EQ(AreaOf(LargePhoto(), {5.0, 0.0, 0.0}).stepX, 0.0);
  EXPECT_EQ(AreaOf(LargePhoto(), {5.0, 0.0, 0.0}).stepY, 0.0);
}

TEST(DrawnArea, AFinalRenderDrawsFromThePhotoAndAPreviewFromAReducedCopy) {
  DrawnFrame frame = LargePhoto();
  EXPECT_FALSE(AreaOf(frame, View{}).reduced);
  EXPECT_EQ(AreaOf(frame, View{}).cached, (PixelSize{4000, 2000}));
  frame.playMode = hfxPlayModePreview;
  const DrawnArea area = AreaOf(frame, {5.0, 0.0, 0.0});
  EXPECT_TRUE(area.reduced);
  EXPECT_EQ(area.cached, (PixelSize{1000, 500}));
  EXPECT_NEAR(area.right - area.left, 800, 1e-2) << "in pixels of the photo all the same";
}

TEST(DrawnArea, AFieldIsDrawnFromTheCopyThatTheFirstWholeFrameWasReducedTo) {
  DrawnFrame field = LargePhoto();
  field.playMode = hfxPlayModePreview;
  field.photo = {2000, 4000};
  field.geometry.output.height = 250;
  field.geometry.fieldMode = hfxFieldModeSeparate;
  EXPECT_EQ(AreaOf(field, View{}).cached, (PixelSize{250, 500}));
  field.first = {3000, 5000};  // for which the photo was kept as it is
  EXPECT_EQ(AreaOf(field, View{}).cached, (PixelSize{125, 250}));
}

TEST(DrawnArea, AFieldShowsWhatItsFrameShows) {
  DrawnFrame frame = LargePhoto();
  const View view = {3.0, 0.1, -0.1};
  const DrawnArea whole = AreaOf(frame, view);
  frame.geometry.output.height /= 2;
  frame.geometry.fieldMode = hfxFieldModeSeparate;
  const DrawnArea field = AreaOf(frame, view);
  EXPECT_EQ(field.top, whole.top);
  EXPECT_EQ(field.bottom, whole.bottom);
  EXPECT_EQ(field.scaleY, whole.scaleY);
}

}  // namespace
}  // namespace kelto
