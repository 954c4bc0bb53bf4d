// Curves for the tests, destroyed with the test.
#pragma once

#include <initializer_list>
#include <memory>
#include <utility>

#include "curves/curve.h"

namespace kelto::test {

struct DestroyCurve {
  void operator()(Curve* curve) const { CurveDestroy(curve); }
};
using OwnedCurve = std::unique_ptr<Curve, DestroyCurve>;

/// A prepared curve through the points given as (x, y).
inline OwnedCurve MakeCurve(int32_t kind, std::initializer_list<std::pair<double, double>> points,
                            uint32_t flags = 0) {
  OwnedCurve curve(CurveCreate());
  CurveSetKind(curve.get(), kind);
  for (const auto& [x, y] : points) CurveAppendXY(curve.get(), x, y);
  curve->flags |= flags;
  CurvePrepare(curve.get());
  return curve;
}

}  // namespace kelto::test
