// A frame or field of a plan's film, as far as geometry goes.
#pragma once

#include "framing/drawn_area.h"
#include "host/plan/render_plan.h"
#include "runtime/hfx/host.h"

namespace kelto::host {

/// What a session reports to the effect of `photo` and of the frame or field that `state` is the
/// time of. `squarePixels` is the parameter's value.
DrawnFrame FrameToDraw(const RenderPlan& plan, PixelSize photo, const hfx::RenderState& state,
                       bool squarePixels);

}  // namespace kelto::host
