// The even-speed table of the motion path, and the path points that it is built from.
#pragma once

#include <cstdint>

#include "platform/hfx.h"
#include "state/PanZoomState.h"

namespace kelto {

/// What a frame time that reaches 1 becomes.
constexpr double kLastFrameTime = 0.9999999999999;

/// What a time above 1 becomes before a curve is asked; fewer nines than the frame time's, on
/// purpose.
constexpr double kLastCurveTime = 0.99999999;

inline double CurveTime(double t) { return t > 1.0 ? kLastCurveTime : t; }

struct PathPoint {
  double x, y;
};

/// A "position" key's value.
PathPoint PositionOfKey(const hfxParamKey& key);

/// A velocity list's value at key `index`; Linear where that key does not exist.
int32_t VelocityOfKey(const hfxParameter& velocities, int32_t index);

/// The path curves' point at `t`.
PathPoint PointOnPath(const PanZoomState& state, double t);

/// The path time that belongs to an eased time, held to the last key's time; 0 where the table does
/// not reach.
double LookupArcTable(PanZoomState& state, double easedTime);

}  // namespace kelto
