// Moves that go no faster than is pleasant to watch.
#pragma once

#include <optional>
#include <vector>

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

/// A move that is to be calm, before anything is known of how long its film will be.
struct AskedMove {
  std::vector<TourView> views{};  ///< as long as the move would be without limits
  PixelSize photo{};              ///< upright
  bool usual = false;             ///< whether the usual limits hold, in films of a second or more
  std::optional<double> pan{}, zoom{};  ///< other limits
};

/// Sets the move, as far as the limits allow in a film of the plan's length.
void SetCalmMove(const AskedMove& asked, RenderPlan& plan);

}  // namespace kelto::host
