#include "host/moves/calm_move.h"

#include <algorithm>
#include <cmath>
#include <variant>
#include <vector>

#include "host/effect/render_state.h"
#include "host/track/keyed_plan.h"
#include "host/track/photo_views.h"
#include "host/track/planned_stops.h"
#include "host/track/view_track.h"
#include "motion/window.h"

namespace kelto::host {
namespace {

bool KeepsTo(const SpeedLimits& limits, const RenderPlan& plan, PixelSize photo) {
  constexpr double kRounding = 1 + 1e-9;
  const auto track = ViewTrack::For(KeyedPlan(plan, photo), photo);
  if (!track) return true;
  const double shape = RoomOf(plan, photo).shape, seconds = 1.0 / plan.format.rate.PerSecond();
  motion::Window last = WindowOf(track->At(FieldState(plan, 0, 0)), shape);
  for (int32_t number = 1; number < plan.frames; ++number) {
    const motion::Window window = WindowOf(track->At(FieldState(plan, number, 0)), shape);
    const motion::Speed speed = motion::SpeedBetween(last, window, seconds);
    if (speed.pan > limits.pan * kRounding) return false;
    if (std::abs(speed.zoom) > limits.zoom * kRounding) return false;
    last = window;
  }
  return true;
}

/// What the others come nearer to: the widest of them, or, of parts that are all of one size, one
/// in their middle.
PhotoRect AnchorOf(const std::vector<PhotoRect>& parts) {
  const auto [least, most] =
      std::minmax_element(parts.begin(), parts.end(),
                          [](const PhotoRect& a, const PhotoRect& b) { return a.width < b.width; });
  constexpr double kOneSize = 1.001;
  if (most->width > least->width * kOneSize) return *most;
  PhotoRect middle = *most;
  const auto [left, right] = std::minmax_element(
      parts.begin(), parts.end(), [](const PhotoRect& a, const PhotoRect& b) { return a.x < b.x; });
  const auto [top, bottom] = std::minmax_element(
      parts.begin(), parts.end(), [](const PhotoRect& a, const PhotoRect& b) { return a.y < b.y; });
  middle.x = (left->x + right->x) / 2;
  middle.y = (top->y + bottom->y) / 2;
  return middle;
}

PhotoRect Between(const PhotoRect& from, const PhotoRect& to, double share) {
  const auto mix = [&](double a, double b) { return a + (b - a) * share; };
  return {mix(from.x, to.x), mix(from.y, to.y), mix(from.width, to.width),
          mix(from.height, to.height)};
}

}  // namespace

void CalmMove(RenderPlan& plan, PixelSize photo, const SpeedLimits& limits) {
  if (plan.views.size() < 2 || KeepsTo(limits, plan, photo)) return;
  const PhotoViews views(plan, photo);
  std::vector<PhotoRect> parts;
  for (const TourView& view : plan.views) parts.push_back(views.PartOf(views.ViewOf(view.view)));
  const PhotoRect anchor = AnchorOf(parts);
  const auto shorten = [&](double share) {
    RenderPlan shorter = plan;
    for (size_t i = 0; i < parts.size(); ++i) {
      shorter.views[i].view = views.ViewOf(Between(anchor, parts[i], share));
    }
    return shorter;
  };
  // A part of the move that is calm, and one that is not; nothing moves in the first.
  double calm = 0.0, quick = 1.0;
  constexpr int kHalvings = 24;
  for (int i = 0; i < kHalvings; ++i) {
    const double share = (calm + quick) / 2;
    (KeepsTo(limits, shorten(share), photo) ? calm : quick) = share;
  }
  plan = shorten(calm);
}

void SetCalmMove(const AskedMove& asked, RenderPlan& plan) {
  // In less than this nothing looks calm.
  constexpr double kLeastCalmSeconds = 1.0, kAny = 1e9;
  plan.views = asked.views;
  const bool usual = asked.usual && plan.frames / plan.format.rate.PerSecond() >= kLeastCalmSeconds;
  if (!usual && !asked.pan && !asked.zoom) return;
  const SpeedLimits otherwise = usual ? SpeedLimits{} : SpeedLimits{kAny, kAny};
  CalmMove(plan, asked.photo,
           {asked.pan.value_or(otherwise.pan), asked.zoom.value_or(otherwise.zoom)});
}

}  // namespace kelto::host
