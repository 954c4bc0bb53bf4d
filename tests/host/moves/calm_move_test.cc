// Moves that are too quick are shortened.
#include "host/moves/calm_move.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "host/effect/render_state.h"
#include "host/plan/default_plan.h"
#include "host/track/keyed_plan.h"
#include "host/track/photo_views.h"
#include "host/track/planned_stops.h"
#include "host/track/view_track.h"
#include "motion/window.h"
#include "tests/host/support/move_frames.h"

namespace kelto::host {
namespace {

constexpr PixelSize kCalmPhotos[] = {{4000, 3000}, {2000, 3000}, {9000, 1500}};

using test::PlanThrough;

std::vector<PhotoRect> PartsOf(const RenderPlan& plan, PixelSize photo) {
  const PhotoViews views(plan, photo);
  std::vector<PhotoRect> parts;
  for (const TourView& view : plan.views) parts.push_back(views.PartOf(views.ViewOf(view.view)));
  return parts;
}

/// The fastest pan and zoom between two frames.
SpeedLimits Fastest(const RenderPlan& plan, PixelSize photo) {
  const auto track = ViewTrack::For(KeyedPlan(plan, photo), photo);
  const double shape = RoomOf(plan, photo).shape;
  SpeedLimits most{0, 0};
  for (int32_t i = 1; i < plan.frames; ++i) {
    const motion::Speed speed = motion::SpeedBetween(
        WindowOf(track->At(FieldState(plan, i - 1, 0)), shape),
        WindowOf(track->At(FieldState(plan, i, 0)), shape), 1 / plan.format.rate.PerSecond());
    most.pan = std::max(most.pan, speed.pan);
    most.zoom = std::max(most.zoom, std::abs(speed.zoom));
  }
  return most;
}

/// Moves within each photo: in to a place, out of it, and across.
std::vector<RenderPlan> Moves(PixelSize photo) {
  std::mt19937 random(11);
  const auto real = [&](double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
  };
  const PhotoViews views(DefaultPlan("photo.jpg"), photo);
  const PhotoRect fill = views.Fill();
  std::vector<RenderPlan> plans;
  for (int i = 0; i < 18; ++i) {
    const double width = fill.width * real(0.15, 0.9);
    PhotoRect a = views.Inside(views.About(real(0, photo.width), real(0, photo.height), width));
    PhotoRect b =
        i % 3 == 2 ? views.Inside(views.About(real(0, photo.width), real(0, photo.height), width))
                   : views.Inside(views.About(a.CentreX(), a.CentreY(), fill.width));
    if (i % 3 == 0) std::swap(a, b);
    RenderPlan plan = PlanThrough({a, b}, photo, 5 + static_cast<int32_t>(real(0, 150)));
    if (i % 2 == 0) {
      plan.SetVelocity("invelocity", "In: Linear");
      plan.SetVelocity("outvelocity", "Out: Linear");
    }
    plans.push_back(plan);
  }
  return plans;
}

TEST(CalmMove, IsNoFasterThanItsLimitsAtAnyMoment) {
  int shortened = 0;
  for (const PixelSize photo : kCalmPhotos) {
    for (const RenderPlan& quick : Moves(photo)) {
      for (const SpeedLimits limits : {SpeedLimits{}, {0.05, 10}, {10, 0.1}}) {
        RenderPlan plan = quick;
        CalmMove(plan, photo, limits);
        const SpeedLimits fastest = Fastest(plan, photo);
        EXPECT_LE(fastest.pan, limits.pan * 1.001);
        EXPECT_LE(fastest.zoom, limits.zoom * 1.001);
        if (plan.views == quick.views) continue;
        ++shortened;
        // No shorter than it has to be.
        EXPECT_TRUE(fastest.pan > limits.pan * 0.98 || fastest.zoom > limits.zoom * 0.98)
            << fastest.pan << " " << fastest.zoom;
      }
    }
  }
  EXPECT_GT(shortened, 50);
}

TEST(CalmMove, LeavesACalmMoveAsItIs) {
  for (const PixelSize photo : kCalmPhotos) {
    for (const RenderPlan& plan : Moves(photo)) {
      const SpeedLimits fastest = Fastest(plan, photo);
      RenderPlan same = plan;
      CalmMove(same, photo, {fastest.pan * 1.0001 + 1e-9, fastest.zoom * 1.0001 + 1e-9});
      EXPECT_EQ(same.views, plan.views);
      RenderPlan calm = plan;
      CalmMove(calm, photo, SpeedLimits{});
      RenderPlan again = calm;
      CalmMove(again, photo, SpeedLimits{});
      EXPECT_EQ(again.views, calm.views) << "once is enough";
    }
  }
}

TEST(CalmMove, StillShowsAllOfWhatItGoesInTo) {
  // What is whole in the closest view of a move in stays so: faces are.
  const PixelSize photo{4000, 3000};
  const PhotoViews views(DefaultPlan("photo.jpg"), photo);
  const PhotoRect close = views.About(900, 1100, 700);
  RenderPlan plan =
      PlanThrough({views.Inside(views.About(900, 1100, views.Fill().width)), close}, photo, 30);
  CalmMove(plan, photo, SpeedLimits{});
  const std::vector<PhotoRect> parts = PartsOf(plan, photo);
  EXPECT_GT(parts.back().width, close.width * 1.1) << "is shortened";
  constexpr double kPixel = 0.1;
  for (const PhotoRect& part : parts) {
    EXPECT_LE(part.x, close.x + kPixel);
    EXPECT_LE(part.y, close.y + kPixel);
    EXPECT_GE(part.Right(), close.Right() - kPixel);
    EXPECT_GE(part.Bottom(), close.Bottom() - kPixel);
  }
}

TEST(SetCalmMove, GoesAsFarAsTheFilmsLengthAllows) {
  const PixelSize photo = kCalmPhotos[0];
  const PhotoViews views(DefaultPlan("photo.jpg"), photo);
  const PhotoRect fill = views.Fill();
  RenderPlan plan = PlanThrough(
      {fill, views.About(photo.width / 2, photo.height / 2, fill.width / 3)}, photo, 125);
  const AskedMove asked{plan.views, photo, true};
  const auto closest = [&](int32_t frames, const AskedMove& move) {
    plan.frames = frames;
    SetCalmMove(move, plan);
    return PartsOf(plan, photo).back().width;
  };
  const double whole = fill.width / 3, inTwo = closest(50, asked), inOne = closest(25, asked);
  EXPECT_GT(inOne, inTwo);
  EXPECT_GT(inTwo, 1.1 * whole);
  EXPECT_NEAR(closest(1000, asked), whole, 0.01) << "back from a shorter one";
  EXPECT_EQ(closest(50, asked), inTwo);
  // In less than a second nothing looks calm, but limits that are given hold.
  EXPECT_NEAR(closest(24, asked), whole, 0.01);
  AskedMove given{asked.views, photo, false};
  EXPECT_NEAR(closest(50, given), whole, 0.01);
  given.zoom = 0.5;
  EXPECT_GT(closest(24, given), inOne);
}

}  // namespace
}  // namespace kelto::host
