// A smooth way through several windows.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "motion/room.h"
#include "motion/window.h"

namespace kelto::motion {

/// A cubic Bezier curve of windows: it stays within what its four windows show together.
class SmoothWay {
 public:
  explicit SmoothWay(const std::array<Window, 4>& windows) : windows_(windows) {}
  /// The window at `p`, 0..1.
  Window At(double p) const;
  /// The perceived length a unit of `p`.
  double Speed(double p) const;
  static constexpr bool kEven = false;

 private:
  std::array<Window, 4> windows_;
};

struct SmoothPath {
  std::vector<SmoothWay> ways;  ///< from each window to the next
  /// How straight the path goes through each window, 1 for straight on, 0 where it turns back.
  std::vector<double> straightness;
};

/// A way through `windows`, neighbours of which differ: its direction never jumps, except where it
/// turns back; between two windows the width only grows or only shrinks; and no window leaves
/// RoomFor(room, ...) of its neighbours.
SmoothPath SmoothThrough(std::span<const Window> windows, const Room& room);

}  // namespace kelto::motion
