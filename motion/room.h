// How far windows may go.
#pragma once

#include "motion/window.h"

namespace kelto::motion {

/// The edges that windows stay within, in the units of a Window.
struct Room {
  double left = -1e9, top = -1e9, right = 1e9, bottom = 1e9;
  double shape = 1.0;    ///< a window's height over its width
  double widest = 10.0;  ///< the greatest width of a window: that of the smallest zoom
};

/// `room`, but on each side as far as both windows reach: what lies beside the picture may be seen
/// between two windows as far as one of them shows it.
Room RoomFor(const Room& room, const Window& from, const Window& to);

}  // namespace kelto::motion
