// The keys that a motion follows from, read off the host's parameters.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/hfx.h"

namespace kelto {

/// Values of the lists "invelocity" and "outvelocity".
enum Velocity : int32_t {
  kVelocityLinear = 0,
  kVelocityEase = 1,
  kVelocityConstant = 2,
  kVelocityHold = 3
};

/// How the path runs from key to key. Values of the list "path"; any other is a straight path.
enum PathType : int32_t { kPathLinear = 0, kPathSpline = 1 };

/// A place that the view looks at, in base rectangles (framing/view.h).
struct PathPoint {
  double x, y;
};

/// A key at a time of 0..1 over the effect's length.
template <typename Value>
struct MotionKey {
  double time;
  Value value;
};

/// Keys in order of time. What has no value is a parameter that the effect lacks.
struct MotionKeys {
  std::optional<std::vector<MotionKey<PathPoint>>> position;
  std::optional<std::vector<MotionKey<double>>> zoom;
  /// Velocities are keyed at the times of the positions; a key that is missing counts as Linear.
  std::optional<std::vector<MotionKey<int32_t>>> in, out;
  int32_t pathType = kPathLinear;  ///< PathType
  int32_t totalFrames = 1;         ///< of the effect; settles how finely a spline is measured
};

/// The keys of "position", "size" (none where its user data names no instance), "invelocity" and
/// "outvelocity". Throws std::bad_alloc.
MotionKeys ReadMotionKeys(const hfxInstance_v1& instance, int32_t pathType);

}  // namespace kelto
