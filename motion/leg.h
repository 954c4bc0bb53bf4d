// The way from one view of a tour to the next, with its perceived length.
#pragma once

#include <variant>
#include <vector>

#include "motion/fly.h"
#include "motion/smooth.h"
#include "motion/steady.h"

namespace kelto::motion {

class Leg {
 public:
  using Way = std::variant<SteadyWay, FlyWay, SmoothWay>;
  explicit Leg(Way way);

  /// The window at `e`, 0..1, as the way's law has it.
  Window At(double e) const;
  /// The perceived length of all of it.
  double Length() const { return lengths_.back(); }
  /// The part of it that is covered at `e`, 0..1.
  double LengthTo(double e) const;
  /// The window at which a part of that length is covered.
  Window AtLength(double length) const;

 private:
  double LengthFrom(double from, double to) const;
  double Speed(double e) const;

  Way way_;
  std::vector<double> lengths_;  ///< covered after each step of `e`; of an even way, all of it
};

}  // namespace kelto::motion
