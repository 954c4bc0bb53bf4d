// All of a photo as one frame.
#pragma once

#include "host/effect/photo.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// A plan of one frame that shows all of the photo, as the effect takes it in for `plan`; its
/// longer side has `most` pixels at the most. What lies behind a transparent photo shows the plan's
/// background.
RenderPlan WholePhoto(const RenderPlan& plan, const Photo& photo, double most = 1600.0);

}  // namespace kelto::host
