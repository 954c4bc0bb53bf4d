// Turns the keys of a frame's parameters into the view: its centre and its zoom.
//
// All times are the host's key times, 0..1 over the effect's length. Velocity lists are keyed at
// the times of the "position" keys; a key that is missing there counts as Linear. No result is ever
// NaN or infinite. Whatever needs a curve throws std::bad_alloc when memory runs out.
#pragma once

#include "platform/hfx.h"
#include "state/PanZoomState.h"

namespace kelto {

/// Values of the "invelocity" and "outvelocity" lists.
enum Velocity : int32_t {
  VelocityLinear = 0,
  VelocityEase = 1,
  VelocityConstant = 2,
  VelocityHold = 3
};

/// The current frame's (or field's) time, 0 to just under 1; 0 for an effect of one frame. Sets
/// `progressive` when the host's video is progressive.
double FrameTime(PanZoomState& state);

/// The velocity easing of a time. With `useArcLength` the eased time is then taken through the
/// even-speed table, built first when it is empty.
double RemapTime(PanZoomState& state, double t, bool useArcLength);

/// Rebuilds the even-speed table from the "position" keys: it maps eased times to the path times at
/// which the view has covered the same share of a run's length.
void BuildArcTable(PanZoomState& state);

/// Makes both path curves anew from the "position" keys; fewer than two keys leave them empty.
/// The curves made before stay when memory runs out.
void RebuildPathCurves(PanZoomState& state);

/// Frees both path curves.
void DestroyPathCurves(PanZoomState& state);

/// The zoom at a time, through the velocity easing. Fewer than two "size" keys give 1.0: a single
/// key is not honoured, on purpose.
double ZoomAt(PanZoomState& state, const hfxParameter& size, double t);

/// Fills `zoom`, `centreX` and `centreY` for the host's current frame.
void EvaluateMotion(PanZoomState& state);

}  // namespace kelto
