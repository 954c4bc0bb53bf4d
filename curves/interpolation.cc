// What runs between a curve's points: the derived data of each kind, and evaluation.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

#include "curves/curve.h"

namespace kelto {
namespace {

struct Free {
  void operator()(double* block) const { std::free(block); }
};

// Second derivatives of a natural spline: the tridiagonal system of continuous first derivatives,
// by elimination and back substitution (de Boor, "A Practical Guide to Splines", chapter IV).
void PrepareNaturalSpline(Curve* curve) {
  const int32_t n = curve->count;
  if (n <= 0) return;
  CurvePoint* p = curve->points;
  const std::unique_ptr<double[], Free> working(
      static_cast<double*>(std::calloc(4 * static_cast<size_t>(n), sizeof(double))));
  if (!working) {
    curve->flags |= Dirty;
    return;
  }
  double* diagonal = working.get();
  double* rightSide = diagonal + n;
  double* width = rightSide + n;
  double* slope = width + n;

  diagonal[0] = diagonal[n - 1] = 1.0;
  rightSide[0] = rightSide[n - 1] = 0.0;
  for (int32_t i = 0; i < n - 1; ++i) {
    width[i] = p[i + 1].x - p[i].x;
    slope[i] = (p[i + 1].y - p[i].y) / width[i];
  }
  for (int32_t i = 1; i < n - 1; ++i) {
    diagonal[i] = 2.0 * (width[i - 1] + width[i]);
    rightSide[i] = 6.0 * (slope[i] - slope[i - 1]);
    if (i == 1) continue;  // the end's second derivative is 0: nothing to eliminate
    const double m = width[i - 1] / diagonal[i - 1];
    diagonal[i] -= width[i - 1] * m;
    rightSide[i] -= m * rightSide[i - 1];
  }
  for (int32_t i = n - 3; i >= 1; --i) {
    rightSide[i] -= rightSide[i + 1] * width[i] / diagonal[i + 1];
  }
  for (int32_t i = 0; i < n; ++i) p[i].secondDerivative = rightSide[i] / diagonal[i];
}

// The middle point is met through the exponent alone.
double EvaluatePowerThreePoint(const Curve* curve, double x) {
  if (curve->exponent == kNoExponent || curve->count != 3) return 0.0;
  const CurvePoint& first = curve->points[0];
  const CurvePoint& last = curve->points[2];
  const bool extrapolate = (curve->flags & Extrapolate) != 0;
  if (x <= first.x) return extrapolate ? first.y + (x - first.x) * first.outTangent : first.y;
  if (x >= last.x) return extrapolate ? last.y + (x - last.x) * last.inTangent : last.y;
  const double t = (x - first.x) / (last.x - first.x);
  return first.y + (last.y - first.y) * std::pow(t, curve->exponent);
}

// Points that do not rise leave the exponent of earlier points in place, so that a curve whose
// points make no sense for a while keeps its shape.
void PreparePowerThreePoint(Curve* curve) {
  CurvePoint* p = curve->points;
  if (curve->count != 3) return;
  if (!(p[0].x < p[1].x && p[1].x < p[2].x && p[0].y < p[1].y && p[1].y < p[2].y)) return;
  curve->exponent = std::log((p[1].y - p[0].y) / (p[2].y - p[0].y)) /
                    std::log((p[1].x - p[0].x) / (p[2].x - p[0].x));

  constexpr double kStep = 0.001;
  constexpr double kSteepest = 200.0;  // upwards only: falling slopes stay uncapped
  const double nearStart = EvaluatePowerThreePoint(curve, p[0].x + kStep);
  p[0].outTangent = std::min((nearStart - p[0].y) / kStep, kSteepest);
  const double nearEnd = EvaluatePowerThreePoint(curve, p[2].x - kStep);
  p[2].inTangent = std::min((p[2].y - nearEnd) / kStep, kSteepest);
}

// Tangents with tension, continuity and bias (Kochanek and Bartels, "Interpolating Splines with
// Local Tension, Continuity, and Bias Control", SIGGRAPH 1984), scaled to each segment's share of
// the x distance between a point's neighbours.
void PrepareHermite(Curve* curve) {
  const int32_t n = curve->count;
  if (n < 3) return;
  // The general form is kept, although every point has these.
  constexpr double tension = 0.0, continuity = 0.0, bias = 0.0;
  CurvePoint* p = curve->points;
  p[0].outTangent = (1 - tension) * (1 - continuity) * (1 - bias) * (p[1].y - p[0].y);
  p[n - 1].inTangent = (1 - tension) * (1 - continuity) * (1 + bias) * (p[n - 1].y - p[n - 2].y);
  for (int32_t i = 1; i < n - 1; ++i) {
    const double before = p[i].x - p[i - 1].x;
    const double span = (p[i + 1].x - p[i].x) + before;
    const double ratio = span == 0.0 ? 0.0 : before / span;
    const double dPrev = p[i].y - p[i - 1].y;
    const double dNext = p[i + 1].y - p[i].y;
    p[i].inTangent =
        ((1 - continuity) * (1 + bias) * dPrev + (1 + continuity) * (1 - bias) * dNext) * ratio *
        (1 - tension);
    p[i].outTangent =
        ((1 + continuity) * (1 + bias) * dPrev + (1 - continuity) * (1 - bias) * dNext) *
        (1 - ratio) * (1 - tension);
  }
}

// The index of the segment that x lies in; the first and last reach outwards without end.
int32_t FindSegment(const Curve* curve, double x) {
  const CurvePoint* inner = curve->points + 1;
  const CurvePoint* last = curve->points + curve->count - 1;
  const CurvePoint* found =
      std::lower_bound(inner, last, x, [](const CurvePoint& p, double at) { return p.x < at; });
  return static_cast<int32_t>(found - inner);
}

double EvaluateLinear(const Curve* curve, double x) {
  const CurvePoint* p = curve->points;
  const int32_t n = curve->count;
  const int32_t i = x < p[0].x ? 0 : x > p[n - 1].x ? n - 2 : FindSegment(curve, x);
  const CurvePoint& a = p[i];
  const CurvePoint& b = p[i + 1];
  return a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x);
}

double EvaluateNaturalSpline(const Curve* curve, double x) {
  const int32_t i = FindSegment(curve, x);
  const CurvePoint& a = curve->points[i];
  const CurvePoint& b = curve->points[i + 1];
  const double dy = b.y - a.y;
  // A flat last segment stays flat whatever its curvature: a motion that has arrived rests.
  if (dy > -1e-9 && dy < 1e-9 && i == curve->count - 2) return a.y;
  const double h = b.x - a.x;
  const double u = x - a.x;
  const double ma = a.secondDerivative;
  const double mb = b.secondDerivative;
  return a.y +
         u * (dy / h - (mb + 2.0 * ma) * h / 6.0 + (ma * 0.5 + (mb - ma) / (6.0 * h) * u) * u);
}

double EvaluateHermite(const Curve* curve, double x) {
  const int32_t i = FindSegment(curve, x);
  const CurvePoint& a = curve->points[i];
  const CurvePoint& b = curve->points[i + 1];
  const double t = (x - a.x) / (b.x - a.x);
  const double t2 = t * t;
  const double t3 = t2 * t;
  return (1 - 3 * t2 + 2 * t3) * a.y + (3 * t2 - 2 * t3) * b.y + (t - 2 * t2 + t3) * a.outTangent +
         (t3 - t2) * b.inTangent;
}

double EvaluateUnclamped(const Curve* curve, double x) {
  const int32_t n = curve->count;
  if (n <= 0) return 0.0;
  const CurvePoint* p = curve->points;
  if (n == 1) return p[0].y;
  if (!(curve->flags & Extrapolate)) {
    if (x < p[0].x) return p[0].y;
    if (x > p[n - 1].x) return p[n - 1].y;
  }
  switch (curve->kind) {
    case Linear:
      return EvaluateLinear(curve, x);
    case NaturalSpline:
      return n == 2 ? EvaluateLinear(curve, x) : EvaluateNaturalSpline(curve, x);
    case PowerThreePoint:
      return EvaluatePowerThreePoint(curve, x);
    case Hermite:
      return n == 2 ? EvaluateLinear(curve, x) : EvaluateHermite(curve, x);
    default:
      return 0.0;
  }
}

// Towards zero, and cut to 16 bits; 0 for what no 32-bit integer holds.
uint16_t TruncateTo16Bits(double v) {
  if (!(std::abs(v) < 2147483648.0)) return 0;
  return static_cast<uint16_t>(static_cast<int32_t>(v));
}

}  // namespace

void CurvePrepare(Curve* curve) {
  if (!(curve->flags & Dirty)) return;
  curve->flags &= ~uint32_t{Dirty};
  switch (curve->kind) {
    case NaturalSpline:
      return PrepareNaturalSpline(curve);
    case PowerThreePoint:
      return PreparePowerThreePoint(curve);
    case Hermite:
      return PrepareHermite(curve);
    default:
      return;
  }
}

double CurveEvaluate(const Curve* curve, double x) {
  const double y = EvaluateUnclamped(curve, x);
  if (!(curve->flags & ClampUnit)) return y;
  return y < 0.0 ? 0.0 : y > 1.0 ? 1.0 : y;
}

void CurveBuildTable(const Curve* curve, uint16_t* table, int16_t n) {
  if (n <= 0) return;
  if (n == 1) {
    table[0] = 0;
    return;
  }
  const double step = 1.0 / (n - 1);
  for (int32_t i = 0; i < n; ++i) {
    table[i] = TruncateTo16Bits(CurveEvaluate(curve, i * step) * (n - 1) + 0.5);
  }
}

}  // namespace kelto
