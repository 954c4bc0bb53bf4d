#include "keyframes/curve_ptr.h"

#include <cmath>
#include <new>

namespace kelto {

CurvePtr NewCurve(int32_t kind, int32_t points) {
  CurvePtr curve(CurveCreate());
  if (!curve || CurveReserve(curve.get(), points) < points) throw std::bad_alloc();
  CurveSetKind(curve.get(), kind);
  return curve;
}

void Prepare(Curve& curve) {
  CurvePrepare(&curve);
  if (curve.flags & Dirty) throw std::bad_alloc();
}

double FiniteOr(double value, double fallback) { return std::isfinite(value) ? value : fallback; }

}  // namespace kelto
