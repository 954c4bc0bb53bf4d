// A smooth curve that rises with its points and never overshoots them.
#pragma once

#include <vector>

namespace kelto::motion {

/// A point, and the share of the usual slope that the curve has there, 0..1.
struct CurveKnot {
  double x = 0.0, y = 0.0;
  double slopeShare = 1.0;
};

/// Cubics through points of increasing x, with slopes after Fritsch and Butland: once continuously
/// differentiable, and between two points never beyond either.
class MonotoneCurve {
 public:
  explicit MonotoneCurve(std::vector<CurveKnot> knots);
  /// Held at the first and last point's value outside.
  double At(double x) const;

 private:
  std::vector<CurveKnot> knots_;
  std::vector<double> slopes_;
};

/// The slope at the point between a stretch of length `before` and slope `in` and one of length
/// `after` and slope `out`: their weighted harmonic mean, or 0 where the direction turns.
double MonotoneSlope(double before, double in, double after, double out);

}  // namespace kelto::motion
