#include "keyframes/path.h"

namespace kelto {

MotionPath::MotionPath(const MotionKeys& keys) {
  const int32_t kind = keys.pathType == kPathSpline ? NaturalSpline : Linear;
  const bool moves = keys.position && keys.position->size() > 1;
  const int32_t count = moves ? static_cast<int32_t>(keys.position->size()) : 0;
  x_ = NewCurve(kind, count);
  y_ = NewCurve(kind, count);
  if (!moves) return;
  for (const auto& key : *keys.position) {
    CurveAppendXY(x_.get(), key.time, key.value.x);
    CurveAppendXY(y_.get(), key.time, key.value.y);
  }
  Prepare(*x_);
  Prepare(*y_);
}

PathPoint MotionPath::At(double t) const {
  const double at = CurveTime(t);
  return {CurveEvaluate(x_.get(), at), CurveEvaluate(y_.get(), at)};
}

}  // namespace kelto
