#include "motion/steady.h"

#include <cmath>

namespace kelto::motion {
namespace {

/// Growth below which the centre goes evenly: there the quotient of two small differences would
/// lose its digits, and both laws are the same to a part in a million.
constexpr double kNoZoom = 1e-6;

}  // namespace

SteadyWay::SteadyWay(const Window& from, const Window& to)
    : from_(from), to_(to), growth_(std::log(to.width / from.width)) {
  const double distance = std::hypot(to.x - from.x, to.y - from.y);
  const bool zooms = std::abs(growth_) >= kNoZoom;
  const double pan = zooms ? distance * growth_ / (to.width - from.width) : distance / from.width;
  speed_ = PerceivedStep(pan, growth_);
}

Window SteadyWay::At(double e) const {
  if (e <= 0.0) return from_;
  if (e >= 1.0) return to_;
  const double width = from_.width * std::exp(growth_ * e);
  const double share =
      std::abs(growth_) >= kNoZoom ? std::expm1(growth_ * e) / std::expm1(growth_) : e;
  return {from_.x + (to_.x - from_.x) * share, from_.y + (to_.y - from_.y) * share, width};
}

}  // namespace kelto::motion
