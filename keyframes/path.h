// The path that a view's centre takes from key to key.
#pragma once

#include "keyframes/curve_ptr.h"
#include "keyframes/motion_keys.h"

namespace kelto {

/// What a time above 1 becomes before a curve is asked. It has fewer nines than the frame time's
/// limit: both are part of what saved projects look like.
constexpr double kLastCurveTime = 0.99999999;

inline double CurveTime(double t) { return t > 1.0 ? kLastCurveTime : t; }

/// Straight lines or a natural spline through the "position" keys, over time.
class MotionPath {
 public:
  /// Fewer than two keys make an empty path, whose points are all (0, 0). Throws std::bad_alloc.
  explicit MotionPath(const MotionKeys& keys);

  /// In logarithmic time of the number of keys.
  PathPoint At(double t) const;

 private:
  CurvePtr x_, y_;
};

}  // namespace kelto
