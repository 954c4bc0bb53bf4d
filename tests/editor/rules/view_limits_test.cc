#include "editor/rules/view_limits.h"

#include <gtest/gtest.h>

#include "host/plan/default_plan.h"
#include "host/track/photo_views.h"
#include "tests/editor/rules/limits_of_tests.h"

namespace kelto::editor {
namespace {

TEST(ViewLimits, FollowFromFilmAndPhoto) {
  host::RenderPlan plan = host::DefaultPlan("photo.jpg");
  plan.format.size = {1280, 720};
  const ViewLimits limits = LimitsOf(plan, {4000, 3000}, false);
  EXPECT_NEAR(limits.shape, 9.0 / 16.0, 1e-6);
  EXPECT_EQ(limits.frameWidth, 1280.0);
  EXPECT_NEAR(limits.narrowest, 4000.0 / 20.0, 1e-3) << "zoom 20, the greatest";
  EXPECT_NEAR(limits.widest, 4000.0 / 0.1, 0.1) << "zoom 0.1, the smallest";
}

TEST(ViewLimits, AllowNothingButPhotoUnlessBeyondTheEdges) {
  EXPECT_DOUBLE_EQ(LandscapeLimits().WidestAllowed(), 4000.0);
  EXPECT_DOUBLE_EQ(LandscapeLimits(true).WidestAllowed(), 40000.0);
  ViewLimits panorama = LandscapeLimits();
  panorama.photoHeight = 900.0;
  EXPECT_DOUBLE_EQ(panorama.WidestAllowed(), 1600.0);
}

TEST(ViewLimits, APhotoTooLongForTheGreatestZoomKeepsItsNarrowestView) {
  ViewLimits strip = LandscapeLimits();
  strip.photoHeight = 50.0;
  EXPECT_DOUBLE_EQ(strip.WidestAllowed(), strip.narrowest);
}

TEST(ViewLimits, TheirViewsAreOnesThatTheEffectTakes) {
  const host::RenderPlan plan = host::DefaultPlan("photo.jpg");
  for (const PixelSize photo : {PixelSize{4000, 3000}, {3000, 4000}, {9000, 600}, {5, 7}}) {
    const ViewLimits limits = LimitsOf(plan, photo, true);
    const host::PhotoViews views(plan, photo);
    for (const double width : {0.0, limits.narrowest, limits.photoWidth, limits.widest, 1e12}) {
      EXPECT_NO_THROW(views.ViewOf(ViewAbout({1.0, 1.0}, width, limits))) << width;
    }
  }
}

TEST(ViewAbout, LiesInsideThePhoto) {
  EXPECT_EQ(ViewAbout({0.0, 0.0}, 1600.0, LandscapeLimits()), ViewOf(0.0, 0.0, 1600.0));
  EXPECT_EQ(ViewAbout({4000.0, 3000.0}, 1600.0, LandscapeLimits()), ViewOf(2400.0, 2100.0, 1600.0));
  EXPECT_EQ(ViewAbout({0.0, 0.0}, 1600.0, LandscapeLimits(true)), ViewOf(-800.0, -450.0, 1600.0));
}

TEST(Inside, PutsALongViewInTheMiddle) {
  const host::PhotoRect whole = ViewOf(-500.0, 200.0, 5000.0);
  EXPECT_EQ(Inside(whole, LandscapeLimits()), ViewOf(-500.0, 93.75 * 2, 5000.0));
}

TEST(Enlargement, IsFramePixelsAPhotoPixel) {
  EXPECT_DOUBLE_EQ(Enlargement(ViewOf(0.0, 0.0, 960.0), LandscapeLimits()), 2.0);
  EXPECT_DOUBLE_EQ(Enlargement(ViewOf(0.0, 0.0, 3840.0), LandscapeLimits()), 0.5);
}

}  // namespace
}  // namespace kelto::editor
