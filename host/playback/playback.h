// Which frame is due: the player's clock.
#pragma once

#include <cstdint>

#include "host/base/film_format.h"

namespace kelto::host {

/// Keeps a film in time with a clock that the caller reads: `now` is in seconds from any origin and
/// never goes back. While playing, the frame due follows from the time alone, so that frames that
/// were not ready in time are skipped. Pauses at the last frame, or starts over.
class Playback {
 public:
  /// A film of `frames` frames, at least 1; begins paused at frame 0.
  Playback(int32_t frames, FrameRate rate, bool loop = false);

  bool Playing() const { return playing_; }
  /// Starts or goes on; from the last frame, starts over.
  void Play(double now);
  void Pause(double now);
  /// Goes to a frame, the nearest that there is, playing on if it plays.
  void Seek(int64_t frame, double now);
  /// Pauses and goes `frames` on, back when negative.
  void Step(int64_t frames, double now);

  /// The frame due.
  int32_t FrameAt(double now);
  /// When the next frame will be due; only while playing.
  double NextDue(double now);

 private:
  int64_t FramesPlayed(double now) const;

  int32_t frames_;
  double rate_;
  bool loop_;
  bool playing_ = false;
  int32_t start_ = 0;  ///< the frame at `startTime_`, or where it is paused
  double startTime_ = 0.0;
};

}  // namespace kelto::host
