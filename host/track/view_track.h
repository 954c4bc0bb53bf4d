// The view of each frame of a film that goes by a motion law of the host's own.
//
// The effect's keys know one law, "linear". For the others the host works out the view of each
// frame, or of each field, and gives the effect one that stands still (ShowView). So a frame costs
// the same however long the film is.
#pragma once

#include <memory>

#include "framing/pixel_size.h"
#include "framing/view.h"
#include "host/plan/render_plan.h"
#include "motion/tour.h"
#include "runtime/hfx/host.h"

namespace kelto::host {

/// The edges of a photo of this size in pixels, and the shape of what zoom 1 shows, as the laws of
/// motion measure them.
motion::Room RoomOf(const RenderPlan& plan, PixelSize photo);

class ViewTrack {
 public:
  /// The track of a plan over a photo of this size in pixels, upright; null where the law is
  /// linear. Throws as KeyedPlan does, and std::bad_alloc.
  static std::unique_ptr<const ViewTrack> For(const RenderPlan& plan, PixelSize photo);

  /// The view of the frame or field that `state` is of.
  View At(const hfx::RenderState& state) const;
  /// The perceived length of the way up to there, as motion::Tour::LengthAt has it.
  double LengthAt(const hfx::RenderState& state) const;

 private:
  double TimeOf(const hfx::RenderState& state) const;
  ViewTrack(const RenderPlan& plan, const motion::Room& room);

  double shape_;      ///< height over width of what zoom 1 shows
  bool wholeFrames_;  ///< both fields show the same moment
  motion::Tour tour_;
};

}  // namespace kelto::host
