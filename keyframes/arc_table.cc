#include "keyframes/arc_table.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace kelto {
namespace {

using PositionKeys = std::vector<MotionKey<PathPoint>>;
using VelocityKeys = std::optional<std::vector<MotionKey<int32_t>>>;

struct PathSample {
  double time;
  PathPoint point;
};

/// Steps that a path is sampled at altogether: no film that is cut together comes near, and a host
/// that counts frames without end takes neither all memory nor all time.
constexpr int32_t kMostPathSteps = 1 << 22;

double Distance(const PathPoint& p, const PathPoint& q) { return std::hypot(q.x - p.x, q.y - p.y); }

/// True when there is a key at exactly `t` and it is Constant.
bool ConstantAt(const VelocityKeys& velocities, double t) {
  if (!velocities) return false;
  const auto key = std::lower_bound(velocities->begin(), velocities->end(), t,
                                    [](const auto& each, double time) { return each.time < time; });
  return key != velocities->end() && key->time == t && key->value == kVelocityConstant;
}

/// Measures a path and adds what it finds to a table.
class Surveyor {
 public:
  Surveyor(const MotionKeys& keys, const MotionPath& path, std::vector<ArcEntry>& entries)
      : keys_(keys), position_(*keys.position), path_(path), entries_(entries) {}

  /// Adds the run from key `a` to key `b`.
  void AddRun(size_t a, size_t b) {
    const double begin = position_[a].time, duration = position_[b].time - begin;
    if (duration == 0.0) return;
    Sample(a, b);
    double travel = begin;
    for (size_t i = 1; i < samples_.size(); ++i) {
      const double d = Distance(samples_[i - 1].point, samples_[i].point);
      // A stretch without movement adds nothing, so that a pause stays a pause.
      if (!(d > 0.0 && length_ > 0.0)) continue;
      travel += d / length_ * duration;
      entries_.push_back({samples_[i].time, travel});
    }
  }

 private:
  /// Points along the path from key `a` to key `b`, and the path's length.
  void Sample(size_t a, size_t b) {
    samples_.clear();
    length_ = 0.0;
    const int32_t most = std::max(kMostPathSteps / static_cast<int32_t>(position_.size()), 1);
    const int32_t steps = std::min(keys_.totalFrames / 4, most);
    const double step = steps > 0 ? (position_[b].time - position_[a].time) / steps
                                  : std::numeric_limits<double>::infinity();
    for (size_t k = a; k < b; ++k) {
      const auto& from = position_[k];
      const auto& to = position_[k + 1];
      if (keys_.pathType == kPathSpline && to.time - from.time > step) {
        SampleSpline(from.time, to.time, step);
      } else {
        length_ += Distance(from.value, to.value);
        samples_.push_back({from.time, from.value});
      }
    }
    samples_.push_back({position_[b].time, position_[b].value});
  }

  /// Adds the samples from one key's time to the next one's, without the next key's own.
  void SampleSpline(double from, double to, double step) {
    double s = from;
    PathPoint p = path_.At(s);
    do {
      const PathPoint q = path_.At(s + step);
      length_ += Distance(p, q);
      samples_.push_back({s, p});
      if (s + step == s) break;  // a step lost in the double's last bits would never arrive
      s += step;
      p = q;
    } while (to > s);
    // The last step may have run past the key already. That overshoot counts twice, as it always
    // has: the speeds of saved projects depend on it.
    length_ += Distance(p, path_.At(to));
  }

  const MotionKeys& keys_;
  const PositionKeys& position_;
  const MotionPath& path_;
  std::vector<ArcEntry>& entries_;
  std::vector<PathSample> samples_;
  double length_ = 0.0;
};

std::vector<ArcEntry> Survey(const MotionKeys& keys, const MotionPath& path) {
  std::vector<ArcEntry> entries = {{0.0, 0.0}};
  if (!keys.position || keys.position->empty()) return entries;
  const PositionKeys& position = *keys.position;
  Surveyor surveyor(keys, path, entries);
  size_t begin = 0;
  for (size_t k = 1; k < position.size(); ++k) {
    const double t = position[k].time;
    const bool passedThrough =
        k + 1 < position.size() && ConstantAt(keys.in, t) && ConstantAt(keys.out, t);
    if (passedThrough) continue;
    surveyor.AddRun(begin, k);
    begin = k;
  }
  // The doubled overshoot can leave the table short of the last key; closed, it never throws the
  // last frames back to the first key.
  const double end = position.back().time;
  if (entries.back().travelTime < end) entries.push_back({end, end});
  return entries;
}

double LastKeyTime(const MotionKeys& keys) {
  if (keys.position && !keys.position->empty()) return keys.position->back().time;
  return std::numeric_limits<double>::infinity();
}

}  // namespace

ArcTable::ArcTable(const MotionKeys& keys, const MotionPath& path)
    : ArcTable(Survey(keys, path), LastKeyTime(keys)) {}

ArcTable::ArcTable(std::vector<ArcEntry> entries, double lastKeyTime)
    : entries_(std::move(entries)), lastKeyTime_(lastKeyTime) {
  ascending_ = std::adjacent_find(entries_.begin(), entries_.end(),
                                  [](const ArcEntry& a, const ArcEntry& b) {
                                    return !(a.travelTime <= b.travelTime);
                                  }) == entries_.end();
}

double ArcTable::PathTime(double easedTime) const {
  const double r = std::min(easedTime, lastKeyTime_);
  auto b = entries_.begin();
  // Keys before time 0 and values that are no numbers make a table that goes to and fro: the first
  // two entries that enclose a time are then looked for one by one.
  if (ascending_) {
    b = std::lower_bound(entries_.begin(), entries_.end(), r,
                         [](const ArcEntry& e, double time) { return e.travelTime < time; });
  }
  if (b == entries_.begin() && b != entries_.end()) ++b;
  for (; b != entries_.end(); ++b) {
    const auto a = b - 1;
    if (!(r >= a->travelTime && b->travelTime >= r)) {
      if (ascending_) break;
      continue;
    }
    if (b->travelTime == a->travelTime) return a->keyTime;
    return a->keyTime +
           (b->keyTime - a->keyTime) * (r - a->travelTime) / (b->travelTime - a->travelTime);
  }
  return 0.0;
}

}  // namespace kelto
