#include "motion/smooth.h"

#include <algorithm>
#include <cmath>

#include "motion/slope.h"
#include "motion/steady.h"

namespace kelto::motion {
namespace {

/// A change of a window; or that per perceived length.
struct Change {
  double x = 0.0, y = 0.0, width = 0.0;
};

Window Moved(const Window& window, const Change& change, double by) {
  return {window.x + change.x * by, window.y + change.y * by, window.width + change.width * by};
}

/// A stretch between two windows.
struct Chord {
  double length = 0.0;       ///< perceived, of the steady way
  double growth = 0.0;       ///< of the width, as it is
  Change leaving, arriving;  ///< of the steady way at its ends, per perceived length
  /// How far the curve's inner windows are from its ends, in perceived length: the third that makes
  /// a straight stretch even, but together no more than the way as the crow flies.
  double afterStart = 0.0, beforeEnd = 0.0;
  /// The share of the growth that each of them may take; 1 together, so that the width never turns.
  double startShare = 0.5, endShare = 0.5;
  Room room;
};

Chord ChordOf(const Window& from, const Window& to, const Room& room) {
  Chord chord;
  chord.length = SteadyWay(from, to).Speed(0.0);
  chord.growth = to.width - from.width;
  chord.room = RoomFor(room, from, to);
  const double growth = std::log(to.width / from.width);
  // d(share)/d(width) is even on the steady way, and the width grows by its own size.
  const double rate = std::abs(growth) < 1e-6 ? 1.0 / from.width : growth / chord.growth;
  const Change whole{to.x - from.x, to.y - from.y, chord.growth};
  const auto scaled = [&](double by) {
    return Change{whole.x * by, whole.y * by, whole.width * by};
  };
  const double leaving = rate * from.width / chord.length;
  const double arriving = rate * to.width / chord.length;
  chord.leaving = scaled(leaving);
  chord.arriving = scaled(arriving);
  double start = leaving * chord.length / 3, end = arriving * chord.length / 3;
  // The narrower end has the shorter one, and keeps it: there the bends are.
  if (start + end > 1.0) (start > end ? start : end) = 1.0 - std::min(start, end);
  chord.afterStart = start / leaving;
  chord.beforeEnd = end / arriving;
  chord.startShare = start + (1.0 - start - end) / 2;
  chord.endShare = 1.0 - chord.startShare;
  return chord;
}

struct Interval {
  double low, high;
};

Interval Both(const Interval& a, const Interval& b) {
  return {std::max(a.low, b.low), std::min(a.high, b.high)};
}

/// The centre's change along one axis that keeps both inner windows within the edges: `centre` is
/// the window's, `half` half its length along the axis, which changes by `growth`.
double Within(double change, double centre, double half, double growth, const Interval& before,
              const Interval& after, double in, double out) {
  const auto slack = [](double value) { return std::max(value, 0.0); };
  const Interval high{-slack(before.high - centre - half) / in - growth,
                      slack(after.high - centre - half) / out - growth};
  const Interval low{growth - slack(centre - half - after.low) / out,
                     growth + slack(centre - half - before.low) / in};
  const Interval both = Both(high, low);
  return both.low <= both.high ? std::clamp(change, both.low, both.high)
                               : (both.low + both.high) / 2;
}

/// The path's change at a window between two chords.
Change ChangeAt(const Window& window, const Chord& before, const Chord& after) {
  const double in = before.beforeEnd, out = after.afterStart;
  const double sum = before.length + after.length;
  const auto mean = [&](double arriving, double leaving) {
    return (arriving * after.length + leaving * before.length) / sum;
  };
  Change change{mean(before.arriving.x, after.leaving.x), mean(before.arriving.y, after.leaving.y),
                MeanSlope(before.length, before.arriving.width, after.length, after.leaving.width)};
  const double most = std::min(std::abs(before.growth) * before.endShare / in,
                               std::abs(after.growth) * after.startShare / out);
  change.width = std::clamp(change.width, -most, most);
  const double half = window.width / 2, growth = change.width / 2;
  const double shape = before.room.shape;
  change.x = Within(change.x, window.x, half, growth, {before.room.left, before.room.right},
                    {after.room.left, after.room.right}, in, out);
  change.y =
      Within(change.y, window.y, half * shape, growth * shape,
             {before.room.top, before.room.bottom}, {after.room.top, after.room.bottom}, in, out);
  return change;
}

Window Between(const Window& a, const Window& b) {
  return {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.width + b.width) / 2};
}

}  // namespace

Window SmoothWay::At(double p) const {
  if (p <= 0.0) return windows_[0];
  if (p >= 1.0) return windows_[3];
  const double q = 1 - p;
  const double share[4] = {q * q * q, 3 * q * q * p, 3 * q * p * p, p * p * p};
  Window window{0.0, 0.0, 0.0};
  for (size_t i = 0; i < windows_.size(); ++i) {
    window.x += share[i] * windows_[i].x;
    window.y += share[i] * windows_[i].y;
    window.width += share[i] * windows_[i].width;
  }
  return window;
}

double SmoothWay::Speed(double p) const {
  const double q = 1 - p;
  const double share[3] = {3 * q * q, 6 * q * p, 3 * p * p};
  Change change;
  for (size_t i = 0; i < 3; ++i) {
    change.x += share[i] * (windows_[i + 1].x - windows_[i].x);
    change.y += share[i] * (windows_[i + 1].y - windows_[i].y);
    change.width += share[i] * (windows_[i + 1].width - windows_[i].width);
  }
  const double width = At(p).width;
  return PerceivedStep(std::hypot(change.x, change.y) / width, change.width / width);
}

SmoothPath SmoothThrough(std::span<const Window> windows, const Room& room) {
  SmoothPath path;
  if (windows.size() < 2) return path;
  std::vector<Chord> chords;
  chords.reserve(windows.size() - 1);
  for (size_t i = 0; i + 1 < windows.size(); ++i) {
    chords.push_back(ChordOf(windows[i], windows[i + 1], room));
  }
  path.straightness.assign(windows.size(), 1.0);
  std::vector<Change> changes(windows.size());
  for (size_t i = 1; i + 1 < windows.size(); ++i) {
    const Change change = ChangeAt(windows[i], chords[i - 1], chords[i]);
    const double width = windows[i].width;
    path.straightness[i] =
        std::min(1.0, PerceivedStep(std::hypot(change.x, change.y) / width, change.width / width));
    changes[i] = change;
  }
  for (size_t i = 0; i < chords.size(); ++i) {
    const Window &from = windows[i], &to = windows[i + 1];
    Window first = Moved(from, changes[i], chords[i].afterStart);
    Window last = Moved(to, changes[i + 1], -chords[i].beforeEnd);
    // The ends have no direction of their own: the way begins and ends as straight as it can.
    const bool begins = i == 0, ends = i + 1 == chords.size();
    if (begins && ends) {
      first = last = Between(from, to);
    } else if (begins) {
      first = Between(from, last);
    } else if (ends) {
      last = Between(first, to);
    }
    path.ways.emplace_back(std::array{from, first, last, to});
  }
  return path;
}

}  // namespace kelto::motion
