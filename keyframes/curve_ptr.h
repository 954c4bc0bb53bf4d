// Curves with an owner.
#pragma once

#include <cstdint>
#include <memory>

#include "curves/curve.h"

namespace kelto {

struct CurveDeleter {
  void operator()(Curve* curve) const { CurveDestroy(curve); }
};
using CurvePtr = std::unique_ptr<Curve, CurveDeleter>;

/// An empty curve of a CurveKind with room for `points` points. Throws std::bad_alloc.
CurvePtr NewCurve(int32_t kind, int32_t points);

/// Prepares the curve. Throws std::bad_alloc where it would then run otherwise than its kind says.
void Prepare(Curve& curve);

/// `value`, or `fallback` for what is infinite or not a number.
double FiniteOr(double value, double fallback);

}  // namespace kelto
