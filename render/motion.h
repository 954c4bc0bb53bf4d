// The motion at the host's current frame.
#pragma once

#include "state/PanZoomState.h"

namespace kelto {

/// The current frame's (or field's) time, 0 to just under 1; 0 for an effect of one frame. Sets
/// `progressive` when the host's video is progressive.
double FrameTime(PanZoomState& state);

/// Fills `zoom`, `centreX` and `centreY` for the host's current frame. Reads the keys where the
/// host has reported changed parameters since the last time (`paramsChanged`, cleared here).
/// Throws std::bad_alloc; the keys are then read at the next frame.
void EvaluateMotion(PanZoomState& state);

}  // namespace kelto
