// How far a long piece of work is.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kelto::host {

/// What a progress line shows. Rates are 0 until there is something to count.
struct Pace {
  int64_t done = 0, total = 1;
  double perSecond = 0.0;
  double secondsLeft = 0.0;
};

/// The pace of work of which `done` of `total` took `seconds`.
Pace PaceOf(int64_t done, int64_t total, double seconds);

/// "[=====     ] 50 %  frame 125 of 250  24.9/s  0:05 left", for a terminal of 80 columns. `unit`
/// is the name of a piece of work, "frame".
std::string BarText(const Pace& pace, const std::string& unit);
/// "frame 125 of 250, 24.9 per second, 5 s left".
std::string PlainText(const Pace& pace, const std::string& unit);

/// Reports a piece of work while it goes on: a bar on a terminal; else a line now and then, the
/// first one after some seconds, so that short work is silent; or "progress" events.
class Progress {
 public:
  Progress(std::string unit, int64_t total);
  /// Takes the bar away.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// `done` pieces are done. Cheap enough to be called for each.
  void Show(int64_t done);

 private:
  using Clock = std::chrono::steady_clock;
  std::string unit_;
  int64_t total_;
  Clock::time_point start_, next_;
};

}  // namespace kelto::host
