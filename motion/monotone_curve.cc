#include "motion/monotone_curve.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelto::motion {
namespace {

/// The slope at an end whose nearest stretch is `near` long and rises by `nearSlope`, the one
/// beyond it by `farSlope`.
double EndSlope(double near, double nearSlope, double far, double farSlope) {
  const double slope = ((2 * near + far) * nearSlope - near * farSlope) / (near + far);
  if (slope * nearSlope <= 0.0) return 0.0;
  return std::abs(slope) > 3 * std::abs(nearSlope) ? 3 * nearSlope : slope;
}

}  // namespace

double MonotoneSlope(double before, double in, double after, double out) {
  if (in * out <= 0.0) return 0.0;
  const double first = 2 * after + before, second = after + 2 * before;
  return (first + second) / (first / in + second / out);
}

MonotoneCurve::MonotoneCurve(std::vector<CurveKnot> knots) : knots_(std::move(knots)) {
  const size_t count = knots_.size();
  slopes_.assign(count, 0.0);
  if (count < 2) return;
  const auto length = [&](size_t i) { return knots_[i + 1].x - knots_[i].x; };
  const auto slope = [&](size_t i) { return (knots_[i + 1].y - knots_[i].y) / length(i); };
  slopes_.front() = slopes_.back() = slope(0);
  if (count > 2) {
    slopes_.front() = EndSlope(length(0), slope(0), length(1), slope(1));
    slopes_.back() =
        EndSlope(length(count - 2), slope(count - 2), length(count - 3), slope(count - 3));
  }
  for (size_t i = 1; i + 1 < count; ++i) {
    slopes_[i] = MonotoneSlope(length(i - 1), slope(i - 1), length(i), slope(i));
  }
  for (size_t i = 0; i < count; ++i) slopes_[i] *= knots_[i].slopeShare;
}

double MonotoneCurve::At(double x) const {
  if (knots_.empty()) return 0.0;
  if (x <= knots_.front().x) return knots_.front().y;
  if (x >= knots_.back().x) return knots_.back().y;
  const auto after = std::upper_bound(knots_.begin(), knots_.end(), x,
                                      [](double at, const CurveKnot& knot) { return at < knot.x; });
  const auto i = static_cast<size_t>(after - knots_.begin()) - 1;
  const CurveKnot &a = knots_[i], &b = knots_[i + 1];
  const double h = b.x - a.x, u = (x - a.x) / h, v = 1 - u;
  return a.y * v * v * (1 + 2 * u) + b.y * u * u * (1 + 2 * v) +
         h * u * v * (slopes_[i] * v - slopes_[i + 1] * u);
}

}  // namespace kelto::motion
