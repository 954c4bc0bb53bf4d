// Moves, frame by frame.
#pragma once

#include <cstdint>
#include <vector>

#include "host/effect/render_state.h"
#include "host/options/photo_rect.h"
#include "host/plan/default_plan.h"
#include "host/track/keyed_plan.h"
#include "host/track/photo_views.h"
#include "host/track/view_track.h"

namespace kelto::test {

/// A film of as many frames that goes through these parts of its photo, by the usual law.
inline host::RenderPlan PlanThrough(const std::vector<host::PhotoRect>& parts, PixelSize photo,
                                    int32_t frames) {
  host::RenderPlan plan = host::DefaultPlan("photo.jpg");
  plan.frames = frames;
  plan.motion = host::MotionLaw::kSteady;
  const host::PhotoViews views(plan, photo);
  std::vector<View> tour;
  for (const host::PhotoRect& part : parts) tour.push_back(views.ViewOf(part));
  host::SetMove(plan, tour);
  return plan;
}

/// The part of the photo in each of its frames.
inline std::vector<host::PhotoRect> PartsThrough(const std::vector<host::PhotoRect>& parts,
                                                 PixelSize photo, int32_t frames) {
  const host::RenderPlan plan = PlanThrough(parts, photo, frames);
  const host::PhotoViews views(plan, photo);
  const auto track = host::ViewTrack::For(host::KeyedPlan(plan, photo), photo);
  std::vector<host::PhotoRect> seen;
  for (int32_t i = 0; i < frames; ++i) {
    seen.push_back(views.PartOf(track->At(host::FieldState(plan, i, 0))));
  }
  return seen;
}

/// Whether `view` shows all of a face, to a pixel.
template <typename Face>
bool IsWhole(const Face& face, const host::PhotoRect& view) {
  constexpr double kPixel = 1.0;
  return face.x >= view.x - kPixel && face.Right() <= view.Right() + kPixel &&
         face.y >= view.y - kPixel && face.Bottom() <= view.Bottom() + kPixel;
}

}  // namespace kelto::test
