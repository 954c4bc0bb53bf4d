#include "editor/rules/canvas_transform.h"

#include <gtest/gtest.h>

#include "tests/editor/rules/limits_of_tests.h"

namespace kelto::editor {
namespace {

constexpr CanvasSize kCanvas{820.0, 620.0};

TEST(CanvasTransform, GoesToThePhotoAndBack) {
  const CanvasTransform transform{0.25, 30.0, -12.0};
  EXPECT_EQ(transform.ToCanvas({100.0, 200.0}), (CanvasPoint{55.0, 38.0}));
  EXPECT_EQ(transform.ToPhoto({55.0, 38.0}), (PhotoPoint{100.0, 200.0}));
}

TEST(CanvasTransform, FitsAllOfThePhotoInTheMiddle) {
  const CanvasTransform fitted = FittedTransform(LandscapeLimits(), kCanvas, 10.0);
  EXPECT_DOUBLE_EQ(fitted.scale, 0.2);
  EXPECT_EQ(fitted.ToCanvas({2000.0, 1500.0}), (CanvasPoint{410.0, 310.0}));
}

TEST(CanvasTransform, ZoomsAboutThePointer) {
  const CanvasTransform fitted = FittedTransform(LandscapeLimits(), kCanvas, 10.0);
  const CanvasPoint pointer{200.0, 150.0};
  const CanvasTransform zoomed = ZoomedAbout(fitted, pointer, 3.0, LandscapeLimits());
  EXPECT_DOUBLE_EQ(zoomed.scale, 0.6);
  EXPECT_NEAR(zoomed.ToPhoto(pointer).x, fitted.ToPhoto(pointer).x, 1e-9);
  EXPECT_NEAR(zoomed.ToPhoto(pointer).y, fitted.ToPhoto(pointer).y, 1e-9);
}

TEST(CanvasTransform, ZoomsNoFurtherThanCanBeUsed) {
  CanvasTransform transform = FittedTransform(LandscapeLimits(), kCanvas, 10.0);
  EXPECT_DOUBLE_EQ(ZoomedAbout(transform, {}, 1e9, LandscapeLimits()).scale, 32.0);
  EXPECT_DOUBLE_EQ(ZoomedAbout(transform, {}, 1e-9, LandscapeLimits()).scale, 64.0 / 4000.0);
}

TEST(CanvasTransform, KeepsThePhotoInSight) {
  const CanvasTransform fitted = FittedTransform(LandscapeLimits(), kCanvas, 10.0);
  for (const double far : {-1e6, 1e6}) {
    const CanvasTransform moved = MovedBy(fitted, far, far, LandscapeLimits(), kCanvas);
    const CanvasPoint begin = moved.ToCanvas({0.0, 0.0}), end = moved.ToCanvas({4000.0, 3000.0});
    EXPECT_LT(begin.x, kCanvas.width);
    EXPECT_LT(begin.y, kCanvas.height);
    EXPECT_GT(end.x, 0.0);
    EXPECT_GT(end.y, 0.0);
  }
}

}  // namespace
}  // namespace kelto::editor
