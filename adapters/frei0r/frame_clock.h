// Which frame of a motion a host asks for.
//
// The interface hands a time to every call, but hosts do not agree on it: MLT and GStreamer give
// seconds, FFmpeg milliseconds, and FFmpeg's filter gives a nonsense number (about -3.7e20) at
// frame widths where it has to copy the picture first. Counting calls alone would be wrong too: MLT
// has one instance for each render thread, and each sees only some of the frames.
#pragma once

#include <cstdint>

#include "platform/api.h"

namespace kelto::frei0r {

/// Frames of one instance by its host's times where these make sense, by counting where they do
/// not.
class KELTO_PLATFORM_API FrameClock {
 public:
  FrameClock() = default;
  /// Of a host that is known to give milliseconds: without that, a first time such as 400 could be
  /// either.
  static FrameClock OfMilliseconds();
  /// Of a host that is known to give the seconds at which a picture is shown, those of live
  /// pictures, too, which come when they come: the frame is the nearest one, whatever was dropped
  /// before.
  static FrameClock OfSeconds();

  /// The frame, from 0, that a call at `time` shows in a stream of `rate` frames a second (29.97
  /// and its like stand for the exact 1000/1001 rates).
  ///
  /// A time is believed when it is that of a frame, in seconds or in milliseconds. A small
  /// step from call to call proves seconds; large ones mean milliseconds, or a host of seconds that
  /// jumped, of which at most one frame comes out wrong. After the first time that is whole in
  /// neither, whether garbage or because the stream has another rate, the instance counts for good.
  int64_t Next(double time, double rate);

  /// Whether the instance counts calls by now although the last time may well be one: the stream
  /// then has another rate, and an instance that sees only some of its frames counts wrongly.
  bool MissesRate() const;

 private:
  enum class Unit { kUnknown, kSeconds, kMilliseconds, kNearest, kNone };
  int64_t Read(double time, double rate);

  Unit unit_ = Unit::kUnknown;
  bool mayBeMilliseconds_ = true;
  int64_t last_ = -1;  ///< frame of the last call
  double lastTime_ = 0.0;
};

}  // namespace kelto::frei0r
