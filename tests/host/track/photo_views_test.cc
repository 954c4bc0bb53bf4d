// Parts of the photo, told from the frames that the module draws.
#include "host/track/photo_views.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/base/error.h"
#include "host/frames/effect_session.h"
#include "host/plan/default_plan.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

class PhotoViewsInFrames : public testing::Test {
 protected:
  /// A photo whose red tells the column and whose green the row, each in `step` pixels a level.
  void MakePhoto(PixelSize size) {
    size_ = size;
    stepX_ = std::max(1, (size.width + 199) / 200);
    stepY_ = std::max(1, (size.height + 199) / 200);
    plan_ = DefaultPlan(folder_ / "photo.bmp");
    plan_.Set("filter", std::string("Filter: Triangle"));
    test::WritePhoto(plan_.photo, size.width, size.height, [&](int32_t x, int32_t y) {
      return test::Rgb{static_cast<uint8_t>(30 + x / stepX_), static_cast<uint8_t>(30 + y / stepY_),
                       128};
    });
  }

  /// Expects a frame that holds `part` to show it from edge to edge.
  void ExpectSeen(const PhotoRect& part) {
    SCOPED_TRACE(std::to_string(part.x) + "," + std::to_string(part.y) + "," +
                 std::to_string(part.width) + "," + std::to_string(part.height));
    const PhotoViews views(plan_, size_);
    SetMove(plan_, views.ViewOf(part), views.ViewOf(part));
    EffectSession session(KELTO_MODULE, plan_, OpenPhoto(plan_.photo), PixelLayout::kBGRA);
    const FrameView frame = session.Render(0);
    const FrameSize size = plan_.format.size;
    const double scaleX = part.width / size.width, scaleY = part.height / size.height;
    for (const double place : {0.1, 0.5, 0.9}) {
      const int32_t column = std::lround(place * (size.width - 1));
      const int32_t row = std::lround(place * (size.height - 1));
      const uint8_t* pixel = frame.Row(row) + ptrdiff_t{4} * column;
      // Rounding of levels and of colours, and a frame pixel.
      const double x = part.x + (column + 0.5) * scaleX, y = part.y + (row + 0.5) * scaleY;
      EXPECT_NEAR((pixel[2] - 30 + 0.5) * stepX_, x, 3.0 * stepX_ + scaleX) << place;
      EXPECT_NEAR((pixel[1] - 30 + 0.5) * stepY_, y, 3.0 * stepY_ + scaleY) << place;
    }
  }

  void ExpectSeenAtAllSizes() {
    for (const FrameSize size : {FrameSize{320, 180}, FrameSize{64, 36}}) {
      plan_.format.size = size;
      const PhotoViews views(plan_, size_);
      const PhotoRect fill = views.Fill();
      ExpectSeen(fill);
      for (const double part : {0.75, 0.4, 0.15}) {
        for (const double place : {0.0, 0.3, 1.0}) {
          PhotoRect close = views.About(0, 0, fill.width * part);
          close.x = place * (size_.width - close.width);
          close.y = (1 - place) * (size_.height - close.height);
          ExpectSeen(close);
        }
      }
    }
  }

  test::TempFolder folder_;
  RenderPlan plan_;
  PixelSize size_;
  int32_t stepX_ = 1, stepY_ = 1;
};

TEST_F(PhotoViewsInFrames, OfALandscape) {
  MakePhoto({600, 400});
  ExpectSeenAtAllSizes();
}

TEST_F(PhotoViewsInFrames, OfAPortrait) {
  MakePhoto({400, 600});
  ExpectSeenAtAllSizes();
}

TEST_F(PhotoViewsInFrames, OfAPanorama) {
  MakePhoto({1600, 200});
  ExpectSeenAtAllSizes();
}

TEST_F(PhotoViewsInFrames, OfASquare) {
  MakePhoto({400, 400});
  ExpectSeenAtAllSizes();
}

TEST_F(PhotoViewsInFrames, OfFieldsPixelsOfVideoAndAFilmWithLongPixels) {
  MakePhoto({600, 400});
  plan_.format.fields = FieldOrder::kTopFirst;
  ExpectSeenAtAllSizes();
  plan_.Set("squarepixels", false);
  ExpectSeenAtAllSizes();
  plan_.format.fields = FieldOrder::kProgressive;
  plan_.format.sampleAspect = {64, 45};
  ExpectSeenAtAllSizes();
}

TEST(PhotoViews, ViewsAndPartsAreEachOthersInverse) {
  RenderPlan plan = DefaultPlan("photo.jpg");
  for (const PixelSize size : {PixelSize{3000, 2000}, PixelSize{2000, 3000}, PixelSize{500, 500}}) {
    const PhotoViews views(plan, size);
    for (const double zoom : {0.3, 0.99, 1.0, 1.2, 1.5, 3.0, 20.0}) {
      const View view{zoom, 0.17, -0.23};
      const View again = views.ViewOf(views.PartOf(view));
      EXPECT_NEAR(again.zoom, view.zoom, 2e-3 * zoom);
      EXPECT_NEAR(again.centreX, view.centreX, 1e-3);
      EXPECT_NEAR(again.centreY, view.centreY, 1e-3);
    }
  }
}

TEST(PhotoViews, AnAreaOfAnotherShapeIsShownWhole) {
  const PhotoViews views(DefaultPlan("photo.jpg"), {3000, 2000});
  const PhotoRect tall{1000, 200, 300, 900}, view = views.Around(tall);
  EXPECT_LE(view.x, tall.x);
  EXPECT_GE(view.Right(), tall.Right());
  EXPECT_NEAR(view.y, 200, 1e-6);
  EXPECT_NEAR(view.height, 900, 1e-6);
  EXPECT_NEAR(view.width, 1600, 1e-3);
}

TEST(PhotoViews, AreMovedIntoThePhoto) {
  const PhotoViews views(DefaultPlan("photo.jpg"), {3000, 2000});
  // In a corner: moved inwards.
  const PhotoRect corner = views.Around({0, 1600, 400, 400});
  EXPECT_NEAR(corner.x, 0, 1e-6);
  EXPECT_NEAR(corner.Bottom(), 2000, 1e-6);
  // Higher than a view of the photo's width can be: bars on both sides.
  const PhotoRect all = views.Around({0, 0, 3000, 2000});
  EXPECT_NEAR(all.x, -(all.width - 3000) / 2, 1e-6);
  for (const PhotoRect& partly : {PhotoRect{-300, 100, 400, 225}, {2900, 1900, 400, 225}}) {
    const PhotoRect view = views.Around(partly);
    EXPECT_GE(view.x, -1e-6);
    EXPECT_GE(view.y, -1e-6);
    EXPECT_LE(view.Right(), 3000 + 1e-6);
    EXPECT_LE(view.Bottom(), 2000 + 1e-6);
    EXPECT_NEAR(view.width, 400, 1e-3);
  }
}

TEST(PhotoViews, OutsideThePhotoAreRefusedWithItsSize) {
  const PhotoViews views(DefaultPlan("photo.jpg"), {3000, 2000});
  for (const PhotoRect& part :
       {PhotoRect{-500, 100, 400, 225}, {3000, 0, 10, 10}, {5, -9, 9, 9}, {0, 2500, 100, 100}}) {
    try {
      views.Around(part);
      ADD_FAILURE() << part.x << ',' << part.y;
    } catch (const UsageError& error) {
      EXPECT_STREQ(error.what(), "lies outside the photo, which is 3000x2000 pixels");
    }
  }
}

TEST(PhotoViews, BeyondWhatTheEffectZoomsAreRefused) {
  const PhotoViews views(DefaultPlan("photo.jpg"), {3000, 2000});
  EXPECT_THROW(views.ViewOf({0, 0, 100, 56.25}), UsageError);
  EXPECT_THROW(views.ViewOf({0, 0, 32000, 18000}), UsageError);
  EXPECT_NO_THROW(views.ViewOf(views.Around({100, 100, 1, 1})));
}

}  // namespace
}  // namespace kelto::host
