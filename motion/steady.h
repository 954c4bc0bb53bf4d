// The straight way between two windows, at an even rate of zoom.
#pragma once

#include "motion/window.h"

namespace kelto::motion {

/// The width grows by an even factor, and the centre goes with it, so that one point of the picture
/// stays where it is on screen. Every window on the way is a mean of both ends: it shows nothing
/// that lies outside what they show, and what the way leads to never moves away from where it ends.
/// The perceived speed is the same all along.
class SteadyWay {
 public:
  SteadyWay(const Window& from, const Window& to);
  /// The window at `e`, 0..1.
  Window At(double e) const;
  /// The perceived length a unit of `e`.
  double Speed(double) const { return speed_; }
  static constexpr bool kEven = true;

 private:
  Window from_, to_;
  double growth_;  ///< logarithm of the widths' ratio; 0 where there is no zoom to speak of
  double speed_;
};

}  // namespace kelto::motion
