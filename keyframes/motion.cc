#include "keyframes/motion.h"

namespace kelto {

ZoomMotion::ZoomMotion(const MotionKeys& keys) : easing_(keys) {
  if (!keys.zoom || keys.zoom->size() < 2) return;
  curve_ = NewCurve(Linear, static_cast<int32_t>(keys.zoom->size()));
  for (const auto& key : *keys.zoom) CurveAppendXY(curve_.get(), key.time, key.value);
  Prepare(*curve_);
}

double ZoomMotion::At(double t) const {
  if (!curve_) return 1.0;
  return FiniteOr(CurveEvaluate(curve_.get(), easing_.At(CurveTime(t)).time), 1.0);
}

Motion::Motion(const MotionKeys& keys)
    : zoom_(keys),
      path_(keys),
      table_(keys, path_),
      pathType_(keys.pathType),
      hasZoom_(keys.zoom.has_value()),
      hasPosition_(keys.position.has_value()) {}

double Motion::PathTime(double t) const {
  const EasedTime eased = Easing().At(t);
  return eased.final ? eased.time : table_.PathTime(eased.time);
}

View Motion::At(double t, const View& held) const {
  View view = held;
  if (hasZoom_) view.zoom = ZoomAt(t);
  if (hasPosition_) {
    const PathPoint centre = CentreAt(t);
    view.centreX = FiniteOr(centre.x, 0.0);
    view.centreY = FiniteOr(centre.y, 0.0);
  }
  return view;
}

}  // namespace kelto
