// The times at which something about a plan's move is set.
#pragma once

#include <cstdint>
#include <vector>

#include "host/plan/render_plan.h"

namespace kelto::host {

/// A time at which a view of the list is reached or left, or "size" or "position" has a key.
struct KeyTime {
  double time = 0.0;  ///< 0..1 over the film
  int32_t frame = 0;  ///< the frame nearest to it
};

/// All of the film's, in order, each once. Keys that lie outside the film, as a trimmed one's do,
/// are left out.
std::vector<KeyTime> KeyTimesOf(const RenderPlan& plan);

}  // namespace kelto::host
