#include "editor/rules/view_drag.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "tests/editor/rules/limits_of_tests.h"

namespace kelto::editor {
namespace {

using host::PhotoRect;

constexpr DragKeys kPlain{false, false, true};
constexpr double kReach = 20.0;
constexpr std::array kCorners = {Grip::kTopLeft, Grip::kTopRight, Grip::kBottomLeft,
                                 Grip::kBottomRight};

PhotoRect After(Grip grip, const PhotoRect& from, double right, double down, DragKeys keys = kPlain,
                const ViewLimits& limits = LandscapeLimits()) {
  return Dragged({grip, from, {500.0, 500.0}}, {500.0 + right, 500.0 + down}, keys, limits, kReach)
      .view;
}

void ExpectNear(const PhotoRect& view, const PhotoRect& wanted) {
  EXPECT_NEAR(view.x, wanted.x, 1e-6);
  EXPECT_NEAR(view.y, wanted.y, 1e-6);
  EXPECT_NEAR(view.width, wanted.width, 1e-6);
  EXPECT_NEAR(view.height, wanted.height, 1e-6);
}

TEST(HitAt, FindsCornersBeforeInsides) {
  const std::array views = {ViewOf(0.0, 0.0, 4000.0), ViewOf(1000.0, 1000.0, 800.0)};
  const CanvasTransform transform{0.1, 0.0, 0.0};
  EXPECT_EQ(HitAt(views, -1, transform, {102.0, 99.0}, 6.0), (Hit{1, Grip::kTopLeft}));
  EXPECT_EQ(HitAt(views, -1, transform, {180.0, 145.0}, 6.0), (Hit{1, Grip::kBottomRight}));
  EXPECT_EQ(HitAt(views, -1, transform, {398.0, 2.0}, 6.0), (Hit{0, Grip::kTopRight}));
  EXPECT_EQ(HitAt(views, -1, transform, {140.0, 120.0}, 6.0), (Hit{1, Grip::kInside}));
  EXPECT_EQ(HitAt(views, 0, transform, {140.0, 120.0}, 6.0), (Hit{1, Grip::kInside}))
      << "the smaller one, though the larger is selected";
  EXPECT_EQ(HitAt(views, -1, transform, {20.0, 200.0}, 6.0), (Hit{0, Grip::kInside}));
  EXPECT_EQ(HitAt(views, -1, transform, {20.0, 290.0}, 6.0), Hit{});
}

TEST(HitAt, PrefersTheSelectedOfEqualViews) {
  const std::array views = {ViewOf(0.0, 0.0, 800.0), ViewOf(0.0, 0.0, 800.0),
                            ViewOf(0.0, 0.0, 800.0)};
  const CanvasTransform transform{1.0, 0.0, 0.0};
  EXPECT_EQ(HitAt(views, 1, transform, {400.0, 200.0}, 6.0), (Hit{1, Grip::kInside}));
  EXPECT_EQ(HitAt(views, 1, transform, {1.0, 1.0}, 6.0), (Hit{1, Grip::kTopLeft}));
  EXPECT_EQ(HitAt(views, 9, transform, {400.0, 200.0}, 6.0), (Hit{0, Grip::kInside}))
      << "a selection that is no view";
}

TEST(Dragging, MovesAView) {
  ExpectNear(After(Grip::kInside, ViewOf(1000.0, 1000.0, 800.0), 123.0, -45.0),
             ViewOf(1123.0, 955.0, 800.0));
  ExpectNear(After(Grip::kNone, ViewOf(1000.0, 1000.0, 800.0), 123.0, -45.0),
             ViewOf(1000.0, 1000.0, 800.0));
}

TEST(Dragging, ACornerResizesAboutTheOppositeCorner) {
  const PhotoRect from = ViewOf(1000.0, 1000.0, 800.0);  // to 1800, 1450
  ExpectNear(After(Grip::kBottomRight, from, 160.0, 90.0), ViewOf(1000.0, 1000.0, 960.0));
  ExpectNear(After(Grip::kTopLeft, from, 160.0, 90.0), ViewOf(1160.0, 1090.0, 640.0));
  ExpectNear(After(Grip::kTopRight, from, 160.0, -90.0), ViewOf(1000.0, 910.0, 960.0));
  ExpectNear(After(Grip::kBottomLeft, from, -160.0, 90.0), ViewOf(840.0, 1000.0, 960.0));
}

TEST(Dragging, ACornerResizesAboutTheMiddleWithAlt) {
  DragKeys keys = kPlain;
  keys.aboutMiddle = true;
  for (const Grip grip : kCorners) {
    const bool right = grip == Grip::kTopRight || grip == Grip::kBottomRight;
    const bool bottom = grip == Grip::kBottomLeft || grip == Grip::kBottomRight;
    ExpectNear(After(grip, ViewOf(1000.0, 1000.0, 800.0), right ? 160.0 : -160.0,
                     bottom ? 90.0 : -90.0, keys),
               ViewOf(840.0, 910.0, 1120.0));
  }
}

TEST(Dragging, LocksTheAxisOfTheLongerWay) {
  DragKeys keys = kPlain;
  keys.lockAxis = true;
  const PhotoRect from = ViewOf(1000.0, 1000.0, 800.0);
  ExpectNear(After(Grip::kInside, from, 100.0, 60.0, keys), ViewOf(1100.0, 1000.0, 800.0));
  ExpectNear(After(Grip::kInside, from, 50.0, -60.0, keys), ViewOf(1000.0, 940.0, 800.0));
  keys.noSnap = false;
  ExpectNear(After(Grip::kInside, ViewOf(1000.0, 5.0, 800.0), 100.0, 60.0, keys),
             ViewOf(1100.0, 5.0, 800.0));
}

TEST(Dragging, SnapsToEdgesAndMiddleUnlessCtrl) {
  const PhotoRect from = ViewOf(1000.0, 1000.0, 800.0);
  const DragKeys snapping{};
  const ViewDrag drag{Grip::kInside, from, {0.0, 0.0}};
  const DraggedView edge = Dragged(drag, {-990.0, -985.0}, snapping, LandscapeLimits(), kReach);
  ExpectNear(edge.view, ViewOf(0.0, 0.0, 800.0));
  EXPECT_EQ(edge.snappedX, 0.0);
  EXPECT_EQ(edge.snappedY, 0.0);
  const DraggedView middle = Dragged(drag, {610.0, 0.0}, snapping, LandscapeLimits(), kReach);
  ExpectNear(middle.view, ViewOf(1600.0, 1000.0, 800.0));
  EXPECT_EQ(middle.snappedX, 2000.0);
  EXPECT_FALSE(middle.snappedY);
  const DraggedView held = Dragged(drag, {610.0, 0.0}, kPlain, LandscapeLimits(), kReach);
  ExpectNear(held.view, ViewOf(1610.0, 1000.0, 800.0));
  EXPECT_FALSE(held.snappedX);
}

TEST(Dragging, ACornerSnapsToAnEdge) {
  const ViewDrag drag{Grip::kTopLeft, ViewOf(1000.0, 1000.0, 800.0), {1000.0, 1000.0}};
  const DraggedView snapped =
      Dragged(drag, {8.0, 1000.0 - 992.0 * 9 / 16}, {}, LandscapeLimits(), kReach);
  EXPECT_NEAR(snapped.view.x, 0.0, 1e-9);
  EXPECT_NEAR(snapped.view.Right(), 1800.0, 1e-9);
  EXPECT_EQ(snapped.snappedX, 0.0);
}

TEST(Dragging, KeepsAViewWhereItIsWhenThePointerComesBack) {
  for (const Grip grip : {Grip::kInside, Grip::kTopLeft, Grip::kBottomRight}) {
    ExpectNear(After(grip, ViewOf(1000.0, 1000.0, 800.0), 0.0, 0.0), ViewOf(1000.0, 1000.0, 800.0));
  }
}

/// Whatever is dragged wherever with whichever keys, what comes out is a view.
TEST(Dragging, NeverLeavesThePhotoOrItsShape) {
  std::mt19937 random(20);
  const auto number = [&](double from, double to) {
    return std::uniform_real_distribution(from, to)(random);
  };
  for (int round = 0; round < 20000; ++round) {
    ViewLimits limits = LandscapeLimits(round % 4 == 0);
    limits.photoWidth = number(300.0, 9000.0);
    limits.photoHeight = number(300.0, 9000.0);
    limits.narrowest = limits.photoWidth / 40.0;
    const PhotoRect from =
        ViewAbout({number(-100.0, 9000.0), number(-100.0, 9000.0)}, number(1.0, 9000.0), limits);
    const Grip grip = round % 5 == 0 ? Grip::kInside : kCorners[round % 4];
    const DragKeys keys{round % 3 == 0, round % 7 == 0, round % 2 == 0};
    const PhotoPoint pressed{number(0.0, 9000.0), number(0.0, 9000.0)};
    const PhotoPoint pointer{pressed.x + number(-9000.0, 9000.0),
                             pressed.y + number(-9000.0, 9000.0)};
    const PhotoRect view = Dragged({grip, from, pressed}, pointer, keys, limits, kReach).view;
    ASSERT_NEAR(view.height, view.width * limits.shape, 1e-6);
    ASSERT_GE(view.width, limits.narrowest - 1e-6);
    ASSERT_LE(view.width, limits.WidestAllowed() + 1e-6);
    if (limits.beyondEdges || limits.WidestAllowed() == limits.narrowest) continue;
    ASSERT_GE(view.x, -1e-6);
    ASSERT_GE(view.y, -1e-6);
    ASSERT_LE(view.Right(), limits.photoWidth + 1e-6);
    ASSERT_LE(view.Bottom(), limits.photoHeight + 1e-6);
    // A corner that stays does so up to the edges, too.
    if (grip != Grip::kTopLeft || keys.aboutMiddle) continue;
    ASSERT_NEAR(view.Right(), from.Right(), 1e-6);
    ASSERT_NEAR(view.Bottom(), from.Bottom(), 1e-6);
  }
}

TEST(Wheel, ResizesAboutThePointer) {
  const PhotoRect view =
      ResizedAbout(ViewOf(1000.0, 1000.0, 800.0), {1200.0, 1225.0}, 0.5, LandscapeLimits());
  ExpectNear(view, ViewOf(1100.0, 1112.5, 400.0));
  EXPECT_DOUBLE_EQ(ResizedAbout(view, {0.0, 0.0}, 1e9, LandscapeLimits()).width, 4000.0);
  EXPECT_DOUBLE_EQ(ResizedAbout(view, {0.0, 0.0}, 1e-9, LandscapeLimits()).width, 200.0);
}

TEST(Arrows, MoveAViewUpToTheEdges) {
  ExpectNear(Nudged(ViewOf(1000.0, 5.0, 800.0), 1.0, -10.0, LandscapeLimits()),
             ViewOf(1001.0, 0.0, 800.0));
  ExpectNear(Nudged(ViewOf(1000.0, 5.0, 800.0), 1.0, -10.0, LandscapeLimits(true)),
             ViewOf(1001.0, -5.0, 800.0));
}

}  // namespace
}  // namespace kelto::editor
