#include "motion/easing.h"

#include <algorithm>
#include <memory>
#include <new>

#include "curves/curve.h"

namespace kelto::motion {
namespace {

struct CurveDeleter {
  void operator()(Curve* curve) const { CurveDestroy(curve); }
};

}  // namespace

double Eased(Departure departure, Arrival arrival, double u) {
  if (departure == Departure::kHold || u <= 0.0) return 0.0;
  if (u >= 1.0) return 1.0;
  const bool leavesEasily = departure == Departure::kEase, comesEasily = arrival == Arrival::kEase;
  if (!leavesEasily && !comesEasily) return u;
  const std::unique_ptr<Curve, CurveDeleter> easing(CurveCreate());
  if (!easing) throw std::bad_alloc();
  CurveSetKind(easing.get(), NaturalSpline);
  CurveAppendXY(easing.get(), 0.0, 0.0);
  if (leavesEasily) CurveAppendXY(easing.get(), 0.25, 0.1);
  CurveAppendXY(easing.get(), 0.5, 0.5);
  if (comesEasily) CurveAppendXY(easing.get(), 0.75, 0.9);
  CurveAppendXY(easing.get(), 1.0, 1.0);
  CurvePrepare(easing.get());
  if (CurveCount(easing.get()) < 4 || (easing->flags & Dirty) != 0) throw std::bad_alloc();
  return std::clamp(CurveEvaluate(easing.get(), u), 0.0, 1.0);
}

}  // namespace kelto::motion
