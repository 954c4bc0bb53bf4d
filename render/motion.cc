#include "render/motion.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <new>

#include "render/arc_table.h"

namespace kelto {
namespace {

struct CurveDeleter {
  void operator()(Curve* curve) const { CurveDestroy(curve); }
};
using CurvePtr = std::unique_ptr<Curve, CurveDeleter>;

CurvePtr NewCurve(int32_t kind) {
  CurvePtr curve(CurveCreate());
  if (!curve) throw std::bad_alloc();
  CurveSetKind(curve.get(), kind);
  return curve;
}

/// Adds a point, or throws where the curve would silently go without it.
void Append(Curve* curve, double x, double y) {
  const int32_t count = CurveCount(curve);
  CurveAppendXY(curve, x, y);
  if (CurveCount(curve) == count) throw std::bad_alloc();
}

/// Prepares the curve, or throws where it would run on otherwise than its kind says.
void Prepare(Curve* curve) {
  CurvePrepare(curve);
  if (curve->flags & Dirty) throw std::bad_alloc();
}

double FiniteOr(double value, double fallback) { return std::isfinite(value) ? value : fallback; }

/// The easing of one stretch in the unit square. The shoulders (0.25, 0.1) and (0.75, 0.9) are the
/// whole design of the velocity modes; both halves meet in the middle.
CurvePtr EasingCurve(int32_t outVelocity, int32_t inVelocity) {
  CurvePtr easing = NewCurve(NaturalSpline);
  Curve* c = easing.get();
  if (outVelocity == VelocityLinear || outVelocity == VelocityConstant ||
      outVelocity == VelocityEase) {
    Append(c, 0.0, 0.0);
    if (outVelocity == VelocityEase) Append(c, 0.25, 0.1);
    Append(c, 0.5, 0.5);
  }
  if (inVelocity == VelocityLinear || inVelocity == VelocityConstant ||
      inVelocity == VelocityEase) {
    if (inVelocity == VelocityEase) Append(c, 0.75, 0.9);
    Append(c, 1.0, 1.0);
  }
  Prepare(c);
  return easing;
}

}  // namespace

double FrameTime(PanZoomState& state) {
  double frame = state.GetCurrentFrame();
  if (state.GetVideoType() == hfxVideoTypeProgressive) state.progressive = true;
  if (state.GetField() == 1 && !state.progressive) frame += 0.5;
  const int32_t total = state.GetTotalFrames();
  if (total <= 1) return 0.0;
  const double t = frame / (static_cast<double>(total) - 1.0);
  return t >= 1.0 ? kLastFrameTime : t;
}

double RemapTime(PanZoomState& state, double t, bool useArcLength) {
  const hfxParameter* outs = state.FindParameter("outvelocity");
  const hfxParameter* ins = state.FindParameter("invelocity");
  if (!outs || !ins || t == 0.0 || t == 1.0) return t;
  const int32_t n = outs->GetNumKeys();
  double remapped = t;
  if (n > 0) {
    int32_t next = 0;
    while (next < n && outs->GetKey(next)->GetTime() < t) ++next;
    int32_t prev = next > 0 ? next - 1 : 0;
    if (next == n) next = prev = n - 1;
    // A run of Constant keys is one stretch.
    while (prev > 0 && VelocityOfKey(*outs, prev) == VelocityConstant) --prev;
    while (next + 1 < n && VelocityOfKey(*ins, next) == VelocityConstant) ++next;

    const double t0 = outs->GetKey(prev)->GetTime();
    const int32_t outVelocity = VelocityOfKey(*outs, prev);
    if (outVelocity == VelocityHold) return t0;
    const hfxParamKey* inKey = ins->GetKey(next);
    const double t1 = (inKey ? inKey : outs->GetKey(next))->GetTime();
    if (t1 == t0) {
      remapped = t0;
    } else {
      const CurvePtr easing = EasingCurve(outVelocity, VelocityOfKey(*ins, next));
      const double u = (t - t0) / (t1 - t0);
      remapped = FiniteOr(t0 + CurveEvaluate(easing.get(), u) * (t1 - t0), t0);
    }
  }
  return useArcLength ? LookupArcTable(state, remapped) : remapped;
}

void DestroyPathCurves(PanZoomState& state) {
  if (state.pathCurveX) CurveDestroy(state.pathCurveX);
  state.pathCurveX = nullptr;
  if (state.pathCurveY) CurveDestroy(state.pathCurveY);
  state.pathCurveY = nullptr;
}

void RebuildPathCurves(PanZoomState& state) {
  // An x curve without a y curve is used as it is, on purpose.
  if (state.pathCurveX && !state.pathCurveY) return;
  const int32_t kind = state.pathType == 1 ? NaturalSpline : Linear;
  CurvePtr x = NewCurve(kind);
  CurvePtr y = NewCurve(kind);
  const hfxParameter* position = state.FindParameter("position");
  if (position && position->GetNumKeys() > 1) {
    for (int32_t i = 0; i < position->GetNumKeys(); ++i) {
      const hfxParamKey* key = position->GetKey(i);
      const PathPoint p = PositionOfKey(*key);
      Append(x.get(), key->GetTime(), p.x);
      Append(y.get(), key->GetTime(), p.y);
    }
    Prepare(x.get());
    Prepare(y.get());
  }
  DestroyPathCurves(state);
  state.pathCurveX = x.release();
  state.pathCurveY = y.release();
}

double ZoomAt(PanZoomState& state, const hfxParameter& size, double t) {
  const int32_t n = size.GetNumKeys();
  if (n < 2) return 1.0;
  const CurvePtr curve = NewCurve(Linear);
  for (int32_t i = 0; i < n; ++i) {
    const hfxParamKey* key = size.GetKey(i);
    double value;
    std::memcpy(&value, key->GetValue(), sizeof value);
    Append(curve.get(), key->GetTime(), value);
  }
  Prepare(curve.get());
  return FiniteOr(CurveEvaluate(curve.get(), RemapTime(state, CurveTime(t), false)), 1.0);
}

void EvaluateMotion(PanZoomState& state) {
  const double t = FrameTime(state);
  const double pathTime = RemapTime(state, t, true);
  RebuildPathCurves(state);
  const PathPoint centre = PointOnPath(state, pathTime);
  if (const hfxParameter* size = state.FindParameter("size")) {
    // The parameter's user data names the instance that it belongs to.
    if (auto* owner = static_cast<PanZoomState*>(size->GetUserData())) {
      state.zoom = ZoomAt(*owner, *size, t);
    }
  }
  if (!state.FindParameter("position")) return;  // the host's own values stand
  state.centreX = FiniteOr(centre.x, 0.0);
  state.centreY = FiniteOr(centre.y, 0.0);
}

}  // namespace kelto
