#include "host/playback/playback.h"

#include <algorithm>
#include <cmath>

namespace kelto::host {
namespace {

/// Of a frame: a clock read just as one is due counts as having reached it.
constexpr double kRounding = 1e-6;

}  // namespace

Playback::Playback(int32_t frames, FrameRate rate, bool loop)
    : frames_(frames), rate_(rate.PerSecond()), loop_(loop) {}

int64_t Playback::FramesPlayed(double now) const {
  return static_cast<int64_t>(std::floor(std::max(0.0, now - startTime_) * rate_ + kRounding));
}

void Playback::Play(double now) {
  if (playing_) return;
  if (start_ == frames_ - 1) start_ = 0;
  startTime_ = now;
  playing_ = true;
}

void Playback::Pause(double now) {
  start_ = FrameAt(now);
  playing_ = false;
}

void Playback::Seek(int64_t frame, double now) {
  start_ = static_cast<int32_t>(std::clamp<int64_t>(frame, 0, frames_ - 1));
  startTime_ = now;
}

void Playback::Step(int64_t frames, double now) {
  Pause(now);
  Seek(start_ + frames, now);
}

int32_t Playback::FrameAt(double now) {
  if (!playing_) return start_;
  const int64_t frame = start_ + FramesPlayed(now);
  if (frame < frames_) return static_cast<int32_t>(frame);
  if (loop_) return static_cast<int32_t>(frame % frames_);
  // The last frame has been shown for its time.
  playing_ = false;
  start_ = frames_ - 1;
  return start_;
}

double Playback::NextDue(double now) {
  return startTime_ + static_cast<double>(FramesPlayed(now) + 1) / rate_;
}

}  // namespace kelto::host
