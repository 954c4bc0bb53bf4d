#include "adapters/frei0r/frame_clock.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace kelto::frei0r {
namespace {

/// Longest stream believed in, about four months. GStreamer's missing time reads as 584 years.
constexpr double kMaxSeconds = 1e7;
/// Seconds: half a millisecond, since some hosts round to whole ones, and a little more.
constexpr double kTolerance = 0.0006;
/// Frames: the same at rates so high that a millisecond is most of a frame.
constexpr double kMaxTolerance = 0.1;
/// Frames from one call to the next, when the times are read as seconds. A host that renders with
/// this many threads is not known; one frame in milliseconds is hundreds.
constexpr double kLargeStep = 64.0;

std::optional<int64_t> WholeFrame(double seconds, double rate) {
  // Written so that a NaN fails.
  if (!(seconds >= 0.0 && seconds <= kMaxSeconds)) return std::nullopt;
  const double frame = seconds * rate;
  const double nearest = std::round(frame);
  if (std::abs(frame - nearest) > std::min(kTolerance * rate, kMaxTolerance)) {
    return std::nullopt;
  }
  return static_cast<int64_t>(nearest);
}

}  // namespace

FrameClock FrameClock::OfMilliseconds() {
  FrameClock clock;
  clock.unit_ = Unit::kMilliseconds;
  return clock;
}

FrameClock FrameClock::OfSeconds() {
  FrameClock clock;
  clock.unit_ = Unit::kNearest;
  return clock;
}

int64_t FrameClock::Read(double time, double rate) {
  const int64_t counted = last_ + 1;
  if (unit_ == Unit::kNearest) {
    // A picture without a time is counted on.
    return time >= 0.0 && time <= kMaxSeconds ? std::llround(time * rate) : counted;
  }
  if (unit_ == Unit::kNone) return counted;
  const auto seconds = WholeFrame(time, rate);
  const auto milliseconds = WholeFrame(time / 1000.0, rate);
  if (last_ >= 0 && time == lastTime_) return last_;
  if (unit_ == Unit::kMilliseconds) {
    if (!milliseconds) unit_ = Unit::kNone;
    return milliseconds.value_or(counted);
  }
  // Tiny milliseconds are close to frame 0 whatever they are, so a small step rules them out.
  const bool small = last_ >= 0 && std::abs(time - lastTime_) * rate < kLargeStep;
  if (!seconds && (!milliseconds || small || unit_ == Unit::kSeconds)) {
    unit_ = Unit::kNone;
    return counted;
  }
  if (small) unit_ = Unit::kSeconds;
  if (unit_ == Unit::kSeconds) return *seconds;
  if (last_ < 0) return seconds ? *seconds : *milliseconds;
  // Whole milliseconds read as seconds are whole frames of many rates, so such a reading is not
  // enough after a large step.
  if (!milliseconds) mayBeMilliseconds_ = false;
  return mayBeMilliseconds_ ? *milliseconds : counted;
}

int64_t FrameClock::Next(double time, double rate) {
  last_ = Read(time, rate);
  lastTime_ = time;
  return last_;
}

bool FrameClock::MissesRate() const {
  return unit_ == Unit::kNone && lastTime_ >= 0.0 && lastTime_ <= kMaxSeconds;
}

}  // namespace kelto::frei0r
