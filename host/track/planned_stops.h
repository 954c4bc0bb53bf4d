// A plan's keys as the stops of a tour.
#pragma once

#include <string>
#include <vector>

#include "framing/view.h"
#include "host/plan/render_plan.h"
#include "motion/tour.h"

namespace kelto::host {

/// `shape` is the height over the width of what zoom 1 shows.
motion::Window WindowOf(const View& view, double shape);
View ViewOf(const motion::Window& window, double shape);

/// Entries of the lists "invelocity" and "outvelocity"; linear for what is none.
motion::Arrival ArrivalOf(const std::string& entry);
motion::Departure DepartureOf(const std::string& entry);

/// A stop for each time at which "size" or "position" has a key; what has none there is taken
/// evenly from its neighbours, and a velocity that has none there counts as linear. As in the
/// effect, fewer than two keys of "size" are zoom 1, and of "position" the middle. One stop at
/// least.
std::vector<motion::Stop> StopsOf(const RenderPlan& plan, double shape);

}  // namespace kelto::host
