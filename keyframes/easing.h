// The velocities of keys as an easing of time.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "keyframes/curve_ptr.h"
#include "keyframes/motion_keys.h"

namespace kelto {

/// A time after easing.
struct EasedTime {
  double time;
  bool final;  ///< the view is at this key time itself: no travel along the path changes it
};

/// Eases times as the keys of "invelocity" and "outvelocity" say; changes no time where the effect
/// lacks one of them or has no keys.
class VelocityEasing {
 public:
  /// Throws std::bad_alloc.
  explicit VelocityEasing(const MotionKeys& keys);

  /// In logarithmic time of the number of keys. Times 0 and 1 are never eased.
  EasedTime At(double t) const;

 private:
  /// What happens between two keys; a run of Constant keys is one stretch.
  struct Stretch {
    double from, to;
    const Curve* shape;  ///< in the unit square; null: the view stands at `from`
  };
  /// How a stretch leaves its first key, or arrives at its last.
  enum Shoulder { kShoulderNone, kShoulderEven, kShoulderEased, kShoulderCount };

  static Shoulder ShoulderOf(int32_t velocity);
  static CurvePtr MakeShape(Shoulder departure, Shoulder arrival);
  const Curve* ShapeOf(int32_t outVelocity, int32_t inVelocity);

  std::array<std::array<CurvePtr, kShoulderCount>, kShoulderCount> shapes_;
  std::vector<double> times_;       ///< of the out keys
  std::vector<Stretch> stretches_;  ///< up to each of the times, and past the last
  bool eased_ = false;
};

}  // namespace kelto
