// The strip below the picture: a seek bar and a line of text; and the page of keys.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/drawing/drawing.h"

namespace kelto::host {

/// What the player shows its user.
struct PlayerStatus {
  int32_t frame = 0, frames = 1;
  double seconds = 0.0, length = 0.0;  ///< of the frame, of the film
  bool playing = false;
  bool fullQuality = true;
  bool target = true;      ///< "Display: Target"
  double shownRate = 0.0;  ///< frames a second in the last second
  int32_t dropped = 0;     ///< frames skipped to stay in time
};

/// "0:01.24 of 0:05.00, frame 31 of 125" and "full quality, 25.0 fps, 0 dropped, Display: Target".
std::string PlaceText(const PlayerStatus& status);
std::string DrawingText(const PlayerStatus& status);

class StatusBar {
 public:
  static constexpr int32_t kHeight = 52;
  /// `keys` are times, 0..1, marked on the seek bar.
  explicit StatusBar(std::vector<double> keys) : keys_(std::move(keys)) {}

  /// Draws it as wide as said; valid until the next call.
  FrameView Draw(int32_t width, const PlayerStatus& status);
  /// Where a point of a bar of this width is on the seek bar, 0..1 of the film.
  static double FractionAt(int32_t x, int32_t width);

 private:
  std::vector<double> keys_;
  std::unique_ptr<Drawing> drawing_;
  int32_t width_ = 0;
};

/// The page that lists the keys.
std::unique_ptr<Drawing> DrawHelp();

}  // namespace kelto::host
