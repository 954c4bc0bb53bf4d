// How far a long piece of work is.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kelto::host {

/// What a progress line shows. Rates are 0 until there is something to count.
struct Pace {
  double done = 0.0;  ///< with the share of those under way
  int64_t total = 1;
  double perSecond = 0.0;
  double secondsLeft = 0.0;
};

/// The pace of work of which `done` of `total` took `seconds`.
Pace PaceOf(double done, int64_t total, double seconds);

/// "[=====     ] 50 %  frame 125 of 250  24.9/s  0:05 left", for a terminal of 80 columns. `unit`
/// is the name of a piece of work, "frame". Where nothing is done yet, without rate and time.
std::string BarText(const Pace& pace, const std::string& unit);
/// "frame 125 of 250, 24.9 per second, 5 s left".
std::string PlainText(const Pace& pace, const std::string& unit);

/// Reports a piece of work while it goes on: a bar on a terminal, from the first call on; else a
/// line now and then, the first one after some seconds, so that short work is silent; or "progress"
/// events.
class Progress {
 public:
  Progress(std::string unit, int64_t total);
  /// Takes the bar away.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// `done` pieces are done, of the last ones a share each. Cheap enough to be called for each.
  void Show(double done);

 private:
  using Clock = std::chrono::steady_clock;
  std::string unit_;
  int64_t total_;
  Clock::time_point start_, next_;
};

}  // namespace kelto::host
