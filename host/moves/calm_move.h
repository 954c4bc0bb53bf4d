// Moves that go no faster than is pleasant to watch.
#pragma once

#include "framing/pixel_size.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// The most that is to be seen between two frames. Usual values for moves that the command finds by
/// itself: a quiet pan takes three seconds and more to cross the frame, a zoom two to double.
struct SpeedLimits {
  double pan = 0.3;   ///< frame widths a second, of the frame's middle
  double zoom = 0.5;  ///< doublings a second
  bool operator==(const SpeedLimits&) const = default;
};

/// Shortens the move of a list of views that goes by a law of the host's until no two frames that
/// follow each other are further apart than `limits` say; one that keeps to them stays as it is to
/// the bit. The widest view stays; the others come nearer to it, within what the move showed. Views
/// of one size come nearer to their middle. `photo` in pixels, upright.
void CalmMove(RenderPlan& plan, PixelSize photo, const SpeedLimits& limits);

}  // namespace kelto::host
