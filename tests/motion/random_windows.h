// Windows and tours drawn at random, the same in every run.
#pragma once

#include <random>
#include <vector>

#include "motion/tour.h"

namespace kelto::motion {

class Random {
 public:
  explicit Random(uint32_t seed) : engine_(seed) {}
  /// A number from `low` to `high`; not by the library's distributions, which differ.
  double Between(double low, double high) {
    return low + (high - low) * (engine_() / 4294967296.0);
  }
  size_t Below(size_t count) { return engine_() % count; }

  /// A photo's room about the base window.
  Room ARoom() {
    const double shape = Between(0.4, 1.8);
    const double across = Between(0.5, 1.5), down = shape * Between(0.5, 1.5);
    return {-across, -down, across, down, shape, 10.0};
  }
  /// A window within the room, of zoom 20 at the most; one in four touches an edge.
  Window WindowIn(const Room& room) {
    const double most = std::min(room.right - room.left, (room.bottom - room.top) / room.shape);
    Window window;
    window.width = most * std::exp(Between(std::log(0.05 / most), 0.0));
    const double across = window.width / 2, down = across * room.shape;
    window.x = Between(room.left + across, room.right - across);
    window.y = Between(room.top + down, room.bottom - down);
    if (Below(4) == 0) window.x = room.left + across;
    if (Below(4) == 0) window.y = room.bottom - down;
    return window;
  }
  /// Views in order of time, 0 to 1, each stretch at least a third of the mean one.
  std::vector<Stop> Stops(const Room& room, size_t count, Arrival arrival, Departure departure) {
    std::vector<Stop> stops;
    double time = 0.0;
    for (size_t i = 0; i < count; ++i) {
      stops.push_back({time, WindowIn(room), arrival, departure});
      time += Between(0.5, 1.5);
    }
    const double last = stops.back().time;
    for (Stop& stop : stops) stop.time /= last;
    return stops;
  }

 private:
  std::mt19937 engine_;
};

/// How far a window reaches out of a room; 0 inside.
inline double Outside(const Window& window, const Room& room) {
  const double across = window.width / 2, down = across * room.shape;
  return std::max({0.0, room.left - (window.x - across), window.x + across - room.right,
                   room.top - (window.y - down), window.y + down - room.bottom});
}

/// Least and largest perceived speed between `frames` + 1 even moments of `at`, over 0..1.
struct SpeedRange {
  double least = 1e300, most = 0.0;
};
template <typename At>
SpeedRange SpeedsOf(const At& at, int frames) {
  SpeedRange range;
  Window last = at(0.0);
  for (int i = 1; i <= frames; ++i) {
    const Window next = at(static_cast<double>(i) / frames);
    const double speed = SpeedBetween(last, next, 1.0 / frames).perceived;
    range.least = std::min(range.least, speed);
    range.most = std::max(range.most, speed);
    last = next;
  }
  return range;
}

inline double Apart(const Window& a, const Window& b) {
  return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.width - b.width)});
}

}  // namespace kelto::motion
