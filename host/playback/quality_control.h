// How well to draw so that drawing keeps up.
#pragma once

namespace kelto::host {

/// Decides between the effect's full and half quality from how long frames took. Falls back to half
/// when several frames in a row were too slow; goes back when half quality leaves enough room,
/// after a wait that doubles each time full quality turns out too slow again.
class QualityControl {
 public:
  static constexpr double kFull = 1.0;
  static constexpr double kHalf = 0.5;
  /// Of a frame's time, what drawing may take at full quality.
  static constexpr double kBudget = 0.9;
  /// Of a frame's time, what drawing at half quality must leave for full quality to be tried.
  static constexpr double kRoom = 0.6;
  /// Slow frames in a row that settle it: one alone may be the machine's, not the film's.
  static constexpr int kSlowFrames = 3;
  /// Seconds at half quality before full quality is tried again, at first and at the most.
  static constexpr double kFirstWait = 2.0;
  static constexpr double kLongestWait = 32.0;
  /// Seconds that full quality has to hold for the wait to be the first again.
  static constexpr double kProven = 5.0;

  /// `frameSeconds` is a frame's time.
  explicit QualityControl(double frameSeconds) : frameSeconds_(frameSeconds) {}

  /// The quality to play in: kFull or kHalf.
  double Quality() const { return half_ ? kHalf : kFull; }
  /// A frame was drawn at Quality() in `seconds` and ready at `now`, by the caller's clock.
  void Drawn(double seconds, double now);

 private:
  void Switch(bool half, double now);

  double frameSeconds_;
  bool half_ = false;
  int slow_ = 0;
  bool trial_ = false;  ///< full quality after half: it may not last
  double since_ = 0.0;  ///< when the quality last changed
  double wait_ = kFirstWait;
};

}  // namespace kelto::host
