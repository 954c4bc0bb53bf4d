#include "host/terminal/progress.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>
#include <utility>

#include "host/base/texts.h"
#include "host/terminal/events.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

using namespace std::chrono_literals;

constexpr auto kBarInterval = 100ms;
constexpr auto kEventInterval = 500ms;
constexpr auto kLineInterval = 10s;

/// "0:05", "12:34", "1:00:00".
std::string ClockText(double seconds) {
  // At most "99:59:59", as wide as the line has room.
  const auto whole = static_cast<int>(std::min(std::ceil(seconds), 359999.0));
  const int hours = whole / 3600, minutes = whole / 60 % 60;
  std::ostringstream text;
  text << std::setfill('0');
  if (hours > 0) text << hours << ':' << std::setw(2);
  text << minutes << ':' << std::setw(2) << whole % 60;
  return text.str();
}

/// The pieces that are done altogether.
int64_t Whole(const Pace& pace) { return static_cast<int64_t>(pace.done); }

/// "24.9/s", or by the minute where that is slow.
std::string RateText(double perSecond) {
  if (perSecond >= 0.95) return FixedText(perSecond, 1) + "/s";
  return FixedText(60.0 * perSecond, 1) + "/min";
}

std::chrono::steady_clock::duration Interval() {
  if (CurrentReporting() == Reporting::kJson) return kEventInterval;
  if (StandardErrorDraws()) return kBarInterval;
  return kLineInterval;
}

}  // namespace

Pace PaceOf(double done, int64_t total, double seconds) {
  Pace pace{done, total};
  if (done > 0.0 && seconds > 0.0) {
    pace.perSecond = done / seconds;
    pace.secondsLeft = (static_cast<double>(total) - done) / pace.perSecond;
  }
  return pace;
}

std::string BarText(const Pace& pace, const std::string& unit) {
  constexpr int kWidth = 20;
  const auto filled = static_cast<int>(kWidth * pace.done / static_cast<double>(pace.total));
  std::ostringstream text;
  text << '[' << std::setfill('=') << std::setw(filled) << "" << std::setfill(' ')
       << std::setw(kWidth - filled) << ""
       << "] " << std::setw(3)
       << static_cast<int64_t>(100.0 * pace.done / static_cast<double>(pace.total)) << " %  "
       << unit << ' ' << Whole(pace) << " of " << pace.total;
  if (pace.perSecond > 0.0) {
    text << "  " << RateText(pace.perSecond) << "  " << ClockText(pace.secondsLeft) << " left";
  }
  return text.str();
}

std::string PlainText(const Pace& pace, const std::string& unit) {
  std::ostringstream text;
  text << unit << ' ' << Whole(pace) << " of " << pace.total << ", " << FixedText(pace.perSecond, 1)
       << " per second, " << FixedText(std::ceil(pace.secondsLeft), 0) << " s left";
  return text.str();
}

Progress::Progress(std::string unit, int64_t total)
    : unit_(std::move(unit)), total_(total), start_(Clock::now()), next_(start_) {
  // Short work is silent where its lines would stay.
  if (CurrentReporting() == Reporting::kJson || !StandardErrorDraws()) next_ += Interval();
}

Progress::~Progress() { ClearProgress(); }

void Progress::Show(double done) {
  const auto now = Clock::now();
  if (now < next_ || CurrentReporting() == Reporting::kQuiet) return;
  next_ = now + Interval();
  const Pace pace = PaceOf(done, total_, std::chrono::duration<double>(now - start_).count());
  if (CurrentReporting() == Reporting::kJson) {
    PrintEvent("progress", {{"unit", unit_},
                            {"done", Whole(pace)},
                            {"total", pace.total},
                            {"perSecond", pace.perSecond},
                            {"secondsLeft", pace.secondsLeft}});
  } else if (StandardErrorDraws()) {
    // A line that is full would go on in the next, where it is not drawn over.
    const auto room = static_cast<size_t>(StandardErrorColumns() - 1);
    DrawProgress(BarText(pace, unit_).substr(0, room));
  } else {
    PrintMessage(PlainText(pace, unit_));
  }
}

}  // namespace kelto::host
