// Where the view is at any time of the effect, as its keys say.
//
// Times are the host's key times, 0..1 over the effect's length. No result is ever infinite or not
// a number. Keys are read once, when a motion is made; each evaluation takes logarithmic time of
// their number and no memory.
#pragma once

#include "framing/view.h"
#include "keyframes/arc_table.h"
#include "keyframes/easing.h"
#include "keyframes/motion_keys.h"
#include "keyframes/path.h"

namespace kelto {

/// The zoom over time, eased.
class ZoomMotion {
 public:
  /// Throws std::bad_alloc.
  explicit ZoomMotion(const MotionKeys& keys);

  /// 1 with fewer than two "size" keys, whatever a single one holds: projects were made so.
  double At(double t) const;
  const VelocityEasing& Easing() const { return easing_; }

 private:
  VelocityEasing easing_;
  CurvePtr curve_;  ///< null: fewer than two keys
};

/// The whole motion, a value made from keys.
class Motion {
 public:
  /// Throws std::bad_alloc.
  explicit Motion(const MotionKeys& keys);

  /// The view at `t`. What the effect has no parameter for stays as `held` has it.
  View At(double t, const View& held) const;
  double ZoomAt(double t) const { return zoom_.At(t); }
  /// The time on the path's curves that belongs to `t`: eased, and evened out along the path.
  double PathTime(double t) const;
  PathPoint CentreAt(double t) const { return path_.At(PathTime(t)); }

  /// Whether the motion was made for this kind of path.
  bool IsFor(int32_t pathType) const { return pathType_ == pathType; }
  const MotionPath& Path() const { return path_; }
  const VelocityEasing& Easing() const { return zoom_.Easing(); }
  const ArcTable& Table() const { return table_; }

 private:
  ZoomMotion zoom_;
  MotionPath path_;
  ArcTable table_;
  int32_t pathType_;
  bool hasZoom_, hasPosition_;
};

}  // namespace kelto
