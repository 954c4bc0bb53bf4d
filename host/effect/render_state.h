// What the effect needs to know before it renders a frame.
#pragma once

#include <cstdint>

#include "host/plan/render_plan.h"
#include "runtime/hfx/host.h"

namespace kelto::host {

/// Renders that a frame takes: two when the film is interlaced.
int32_t FieldsOf(const RenderPlan& plan);

/// The state for frame `number`, 0-based, as a whole; `quality` as for EffectSession::Render.
hfx::RenderState FrameState(const RenderPlan& plan, int32_t number, double quality = 1.0);

/// The state for render `field`, 0 .. FieldsOf(plan) - 1, of the frame: that of the field, in order
/// of time, or of the whole frame.
hfx::RenderState FieldState(const RenderPlan& plan, int32_t number, int32_t field,
                            double quality = 1.0);

}  // namespace kelto::host
