#include "render/arc_table.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "render/motion.h"

namespace kelto {
namespace {

struct PathSample {
  double time;
  PathPoint point;
};

/// Steps that a path is sampled at altogether: no film that is cut together comes near, and a host
/// that counts frames without end takes neither all memory nor all time.
constexpr int32_t kMostPathSteps = 1 << 22;

double Distance(const PathPoint& p, const PathPoint& q) { return std::hypot(q.x - p.x, q.y - p.y); }

/// Adds the samples of the path between key `k` and the next, without the next key's own.
void SampleSpline(PanZoomState& state, double from, double to, double step,
                  std::vector<PathSample>& samples, double& length) {
  RebuildPathCurves(state);
  double s = from;
  PathPoint p = PointOnPath(state, s);
  do {
    const PathPoint q = PointOnPath(state, s + step);
    length += Distance(p, q);
    samples.push_back({s, p});
    if (s + step == s) break;  // a step lost in the double's last bits would never arrive
    s += step;
    p = q;
  } while (to > s);
  // The last step may have run past the key already: that overshoot counts twice, on purpose.
  length += Distance(p, PointOnPath(state, to));
}

/// Points along the path from the key at `tA` to the key at `tB`, and the path's length.
std::vector<PathSample> SamplePath(PanZoomState& state, const hfxParameter& position, double tA,
                                   double tB, double& length) {
  std::vector<PathSample> samples;
  length = 0.0;
  const int32_t a = position.GetKeyIndex(tA);
  const int32_t b = position.GetKeyIndex(tB);
  if (a < 0 || b <= a) return samples;
  const int32_t steps =
      std::min(state.GetTotalFrames() / 4, std::max(kMostPathSteps / position.GetNumKeys(), 1));
  const double step = steps > 0 ? (tB - tA) / steps : INFINITY;
  for (int32_t k = a; k < b; ++k) {
    const double from = position.GetKey(k)->GetTime();
    const double to = position.GetKey(k + 1)->GetTime();
    if (state.pathType == 1 && to - from > step) {
      SampleSpline(state, from, to, step, samples, length);
    } else {
      const PathPoint p = PositionOfKey(*position.GetKey(k));
      length += Distance(p, PositionOfKey(*position.GetKey(k + 1)));
      samples.push_back({from, p});
    }
  }
  samples.push_back({tB, PositionOfKey(*position.GetKey(b))});
  return samples;
}

void AddPathSegment(PanZoomState& state, const hfxParameter& position, double tA, double tB) {
  double length = 0.0;
  const std::vector<PathSample> samples = SamplePath(state, position, tA, tB, length);
  double travel = tA;
  for (size_t i = 1; i < samples.size(); ++i) {
    const double d = Distance(samples[i - 1].point, samples[i].point);
    // A stretch without movement adds nothing, so that a pause stays a pause.
    if (!(d > 0.0 && length > 0.0)) continue;
    travel += d / length * (tB - tA);
    state.motionTable.push_back({samples[i].time, travel});
  }
}

double LastKeyTime(const hfxParameter& parameter) {
  return parameter.GetKey(parameter.GetNumKeys() - 1)->GetTime();
}

}  // namespace

PathPoint PositionOfKey(const hfxParamKey& key) {
  PathPoint p;
  std::memcpy(&p, key.GetValue(), sizeof p);
  return p;
}

int32_t VelocityOfKey(const hfxParameter& velocities, int32_t index) {
  const hfxParamKey* key = velocities.GetKey(index);
  if (!key) return VelocityLinear;
  int32_t value;
  std::memcpy(&value, key->GetValue(), sizeof value);
  return value;
}

PathPoint PointOnPath(const PanZoomState& state, double t) {
  const double at = CurveTime(t);
  return {state.pathCurveX ? CurveEvaluate(state.pathCurveX, at) : 0.0,
          state.pathCurveY ? CurveEvaluate(state.pathCurveY, at) : 0.0};
}

void BuildArcTable(PanZoomState& state) {
  state.motionTable.clear();
  state.motionTable.push_back({0.0, 0.0});
  const hfxParameter* position = state.FindParameter("position");
  const int32_t n = position ? position->GetNumKeys() : 0;
  if (n < 1) return;
  const hfxParameter* ins = state.FindParameter("invelocity");
  const hfxParameter* outs = state.FindParameter("outvelocity");
  const auto constantAt = [](const hfxParameter* velocities, double t) {
    return velocities && VelocityOfKey(*velocities, velocities->GetKeyIndex(t)) == VelocityConstant;
  };
  double tA = position->GetKey(0)->GetTime();
  for (int32_t i = 1; i < n; ++i) {
    const double tB = position->GetKey(i)->GetTime();
    const bool passedThrough = i < n - 1 && constantAt(ins, tB) && constantAt(outs, tB);
    if (passedThrough) continue;
    AddPathSegment(state, *position, tA, tB);
    tA = tB;
  }
  // The doubled overshoot can leave the table short of the last key; closed, it never throws the
  // last frames back to the first key.
  const double end = LastKeyTime(*position);
  if (state.motionTable.back().travelTime < end) state.motionTable.push_back({end, end});
}

double LookupArcTable(PanZoomState& state, double easedTime) {
  if (state.motionTable.empty()) BuildArcTable(state);
  double r = easedTime;
  const hfxParameter* position = state.FindParameter("position");
  if (position && position->GetNumKeys() > 0) r = std::min(r, LastKeyTime(*position));
  for (size_t i = 1; i < state.motionTable.size(); ++i) {
    const ArcEntry& a = state.motionTable[i - 1];
    const ArcEntry& b = state.motionTable[i];
    if (!(r >= a.travelTime && b.travelTime >= r)) continue;
    if (b.travelTime == a.travelTime) return a.keyTime;
    return a.keyTime + (b.keyTime - a.keyTime) * (r - a.travelTime) / (b.travelTime - a.travelTime);
  }
  return 0.0;
}

}  // namespace kelto
