#include "tests/keyframes/plain_motion.h"

#include <algorithm>
#include <cmath>

#include "keyframes/curve_ptr.h"

namespace kelto::test {
namespace {

using Velocities = std::vector<MotionKey<int32_t>>;

int32_t VelocityOf(const Velocities& keys, size_t index) {
  return index < keys.size() ? keys[index].value : int32_t{kVelocityLinear};
}

CurvePtr EasingCurve(int32_t out, int32_t in) {
  CurvePtr curve = NewCurve(NaturalSpline, 0);
  if (out == kVelocityLinear || out == kVelocityConstant || out == kVelocityEase) {
    CurveAppendXY(curve.get(), 0.0, 0.0);
    if (out == kVelocityEase) CurveAppendXY(curve.get(), 0.25, 0.1);
    CurveAppendXY(curve.get(), 0.5, 0.5);
  }
  if (in == kVelocityLinear || in == kVelocityConstant || in == kVelocityEase) {
    if (in == kVelocityEase) CurveAppendXY(curve.get(), 0.75, 0.9);
    CurveAppendXY(curve.get(), 1.0, 1.0);
  }
  CurvePrepare(curve.get());
  return curve;
}

/// One coordinate of the path at `t`.
template <typename Coordinate>
double OnPath(const MotionKeys& keys, double t, Coordinate coordinate) {
  const CurvePtr curve = NewCurve(keys.pathType == kPathSpline ? NaturalSpline : Linear, 0);
  if (keys.position->size() > 1) {
    for (const auto& key : *keys.position) {
      CurveAppendXY(curve.get(), key.time, coordinate(key.value));
    }
    CurvePrepare(curve.get());
  }
  return CurveEvaluate(curve.get(), t > 1.0 ? 0.99999999 : t);
}

PathPoint PointAt(const MotionKeys& keys, double t) {
  return {OnPath(keys, t, [](const PathPoint& p) { return p.x; }),
          OnPath(keys, t, [](const PathPoint& p) { return p.y; })};
}

double Distance(const PathPoint& p, const PathPoint& q) { return std::hypot(q.x - p.x, q.y - p.y); }

void AddRun(const MotionKeys& keys, size_t a, size_t b, std::vector<ArcEntry>& table) {
  const auto& position = *keys.position;
  std::vector<MotionKey<PathPoint>> samples;
  double length = 0.0;
  const int32_t steps = keys.totalFrames / 4;
  const double begin = position[a].time, duration = position[b].time - begin;
  const double step = steps > 0 ? duration / steps : INFINITY;
  for (size_t k = a; k < b; ++k) {
    const double from = position[k].time, to = position[k + 1].time;
    if (keys.pathType == kPathSpline && to - from > step) {
      double s = from;
      do {
        length += Distance(PointAt(keys, s), PointAt(keys, s + step));
        samples.push_back({s, PointAt(keys, s)});
        s += step;
      } while (to > s);
      length += Distance(PointAt(keys, s), PointAt(keys, to));
    } else {
      length += Distance(position[k].value, position[k + 1].value);
      samples.push_back(position[k]);
    }
  }
  samples.push_back(position[b]);
  double travel = begin;
  for (size_t i = 1; i < samples.size(); ++i) {
    const double d = Distance(samples[i - 1].value, samples[i].value);
    if (!(d > 0.0 && length > 0.0)) continue;
    travel += d / length * duration;
    table.push_back({samples[i].time, travel});
  }
}

bool ConstantAt(const Velocities& velocities, double t) {
  for (const auto& key : velocities) {
    if (key.time == t) return key.value == kVelocityConstant;
  }
  return false;
}

}  // namespace

std::vector<ArcEntry> PlainTable(const MotionKeys& keys) {
  std::vector<ArcEntry> table = {{0.0, 0.0}};
  const auto& position = *keys.position;
  if (position.empty()) return table;
  size_t a = 0;
  for (size_t b = 1; b < position.size(); ++b) {
    const double t = position[b].time;
    if (b + 1 < position.size() && ConstantAt(*keys.in, t) && ConstantAt(*keys.out, t)) continue;
    AddRun(keys, a, b, table);
    a = b;
  }
  const double end = position.back().time;
  if (table.back().travelTime < end) table.push_back({end, end});
  return table;
}

double PlainTime(const MotionKeys& keys, double t, bool alongPath) {
  if (t == 0.0 || t == 1.0) return t;
  const Velocities& outs = *keys.out;
  const Velocities& ins = *keys.in;
  const size_t n = outs.size();
  double eased = t;
  if (n > 0) {
    size_t next = 0;
    while (next < n && outs[next].time < t) ++next;
    size_t previous = next > 0 ? next - 1 : 0;
    if (next == n) next = previous = n - 1;
    while (previous > 0 && VelocityOf(outs, previous) == kVelocityConstant) --previous;
    while (next + 1 < n && VelocityOf(ins, next) == kVelocityConstant) ++next;
    const double t0 = outs[previous].time;
    if (outs[previous].value == kVelocityHold) return t0;
    const double t1 = next < ins.size() ? ins[next].time : outs[next].time;
    if (t1 == t0) {
      eased = t0;
    } else {
      const CurvePtr curve = EasingCurve(outs[previous].value, VelocityOf(ins, next));
      eased = t0 + CurveEvaluate(curve.get(), (t - t0) / (t1 - t0)) * (t1 - t0);
    }
  }
  if (!alongPath) return eased;
  if (!keys.position->empty()) eased = std::min(eased, keys.position->back().time);
  const std::vector<ArcEntry> table = PlainTable(keys);
  for (size_t i = 1; i < table.size(); ++i) {
    const ArcEntry &a = table[i - 1], &b = table[i];
    if (!(eased >= a.travelTime && b.travelTime >= eased)) continue;
    if (b.travelTime == a.travelTime) return a.keyTime;
    return a.keyTime +
           (b.keyTime - a.keyTime) * (eased - a.travelTime) / (b.travelTime - a.travelTime);
  }
  return 0.0;
}

View PlainView(const MotionKeys& keys, double t) {
  View view;
  if (keys.zoom->size() > 1) {
    const CurvePtr zoom = NewCurve(Linear, 0);
    for (const auto& key : *keys.zoom) CurveAppendXY(zoom.get(), key.time, key.value);
    CurvePrepare(zoom.get());
    view.zoom = CurveEvaluate(zoom.get(), PlainTime(keys, t > 1.0 ? 0.99999999 : t, false));
  }
  const PathPoint centre = PointAt(keys, PlainTime(keys, t, true));
  view.centreX = centre.x;
  view.centreY = centre.y;
  return view;
}

}  // namespace kelto::test
