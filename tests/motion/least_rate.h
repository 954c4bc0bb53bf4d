// The least rate of change with which any speed can keep to given times.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "motion/pace.h"

namespace kelto::motion {

/// Whether a speed that changes at `rate` at most can go from u to v in a time `h` while it covers
/// `length`: it covers most when it rises first, and least when it falls first.
inline bool CanCover(double u, double v, double length, double h, double rate) {
  if (std::abs(u - v) > rate * h) return false;
  const double peak = (u + v + rate * h) / 2, low = (u + v - rate * h) / 2;
  const double ends = u * u + v * v;
  const double most = (2 * peak * peak - ends) / (2 * rate);
  const double least = low >= 0.0 ? (ends - 2 * low * low) / (2 * rate) : ends / (2 * rate);
  return least <= length && length <= most;
}

/// The least rate of any speed that has one of `kSpeeds` values at each milestone: as much as the
/// least of all, or a little more.
inline double LeastRate(const std::vector<Milestone>& milestones) {
  constexpr int kSpeeds = 48;
  double fastest = 0.0, shortest = 1e300;
  for (size_t i = 1; i < milestones.size(); ++i) {
    const double h = milestones[i].time - milestones[i - 1].time;
    fastest = std::max(fastest, (milestones[i].length - milestones[i - 1].length) / h);
    shortest = std::min(shortest, h);
  }
  const auto works = [&](double rate) {
    std::vector<char> reached(kSpeeds + 1, 1);
    for (size_t i = 1; i < milestones.size(); ++i) {
      std::vector<char> next(kSpeeds + 1, 0);
      for (int from = 0; from <= kSpeeds; ++from) {
        if (!reached[static_cast<size_t>(from)]) continue;
        for (int to = 0; to <= kSpeeds; ++to) {
          if (CanCover(2.5 * fastest * from / kSpeeds, 2.5 * fastest * to / kSpeeds,
                       milestones[i].length - milestones[i - 1].length,
                       milestones[i].time - milestones[i - 1].time, rate)) {
            next[static_cast<size_t>(to)] = 1;
          }
        }
      }
      reached = std::move(next);
    }
    return std::find(reached.begin(), reached.end(), 1) != reached.end();
  };
  double low = 0.0, high = 4.1 * fastest / shortest;
  for (int i = 0; i < 25; ++i) {
    const double middle = (low + high) / 2;
    (works(middle) ? high : low) = middle;
  }
  return high;
}

}  // namespace kelto::motion
