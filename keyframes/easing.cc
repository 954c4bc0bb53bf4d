#include "keyframes/easing.h"

#include <algorithm>
#include <cstddef>

namespace kelto {
namespace {

/// The velocity of key `index`; Linear where that key does not exist.
int32_t VelocityAt(const std::vector<MotionKey<int32_t>>& velocities, size_t index) {
  return index < velocities.size() ? velocities[index].value : int32_t{kVelocityLinear};
}

}  // namespace

VelocityEasing::VelocityEasing(const MotionKeys& keys) : eased_(keys.in && keys.out) {
  if (!eased_ || keys.out->empty()) return;
  const auto& outs = *keys.out;
  const auto& ins = *keys.in;
  const size_t n = outs.size();
  // Where the run of Constant keys that a key lies in begins and ends.
  std::vector<size_t> begins(n), ends(n);
  for (size_t k = 0; k < n; ++k) {
    begins[k] = k > 0 && outs[k].value == kVelocityConstant ? begins[k - 1] : k;
  }
  for (size_t k = n; k-- > 0;) {
    ends[k] = k + 1 < n && VelocityAt(ins, k) == kVelocityConstant ? ends[k + 1] : k;
  }
  times_.reserve(n);
  for (const auto& key : outs) times_.push_back(key.time);
  stretches_.reserve(n + 1);
  for (size_t k = 0; k <= n; ++k) {
    const size_t previous = begins[std::min(k > 0 ? k - 1 : 0, n - 1)];
    const size_t next = ends[std::min(k, n - 1)];
    const double to = (next < ins.size() ? ins : outs)[next].time;
    stretches_.push_back(
        {outs[previous].time, to, ShapeOf(outs[previous].value, VelocityAt(ins, next))});
  }
}

EasedTime VelocityEasing::At(double t) const {
  if (!eased_ || t == 0.0 || t == 1.0) return {t, true};
  if (stretches_.empty()) return {t, false};
  const auto next = std::lower_bound(times_.begin(), times_.end(), t);
  const Stretch& stretch = stretches_[static_cast<size_t>(next - times_.begin())];
  if (!stretch.shape) return {stretch.from, true};
  const double length = stretch.to - stretch.from;
  if (stretch.to == stretch.from) return {stretch.from, false};
  const double u = (t - stretch.from) / length;
  return {FiniteOr(stretch.from + CurveEvaluate(stretch.shape, u) * length, stretch.from), false};
}

VelocityEasing::Shoulder VelocityEasing::ShoulderOf(int32_t velocity) {
  if (velocity == kVelocityLinear || velocity == kVelocityConstant) return kShoulderEven;
  return velocity == kVelocityEase ? kShoulderEased : kShoulderNone;
}

// The shoulders (0.25, 0.1) and (0.75, 0.9) are the whole design of the velocity modes; both halves
// meet in the middle.
CurvePtr VelocityEasing::MakeShape(Shoulder departure, Shoulder arrival) {
  CurvePtr shape = NewCurve(NaturalSpline, 5);
  if (departure != kShoulderNone) {
    CurveAppendXY(shape.get(), 0.0, 0.0);
    if (departure == kShoulderEased) CurveAppendXY(shape.get(), 0.25, 0.1);
    CurveAppendXY(shape.get(), 0.5, 0.5);
  }
  if (arrival != kShoulderNone) {
    if (arrival == kShoulderEased) CurveAppendXY(shape.get(), 0.75, 0.9);
    CurveAppendXY(shape.get(), 1.0, 1.0);
  }
  Prepare(*shape);
  return shape;
}

/// The shape of a stretch, made when it is first asked for; null for one that holds.
const Curve* VelocityEasing::ShapeOf(int32_t outVelocity, int32_t inVelocity) {
  if (outVelocity == kVelocityHold) return nullptr;
  const Shoulder departure = ShoulderOf(outVelocity), arrival = ShoulderOf(inVelocity);
  CurvePtr& shape = shapes_[departure][arrival];
  if (!shape) shape = MakeShape(departure, arrival);
  return shape.get();
}

}  // namespace kelto
