#include "motion/room.h"

#include <algorithm>

namespace kelto::motion {

Room RoomFor(const Room& room, const Window& from, const Window& to) {
  Room wide = room;
  for (const Window& window : {from, to}) {
    const double across = window.width / 2, down = across * room.shape;
    wide.left = std::min(wide.left, window.x - across);
    wide.right = std::max(wide.right, window.x + across);
    wide.top = std::min(wide.top, window.y - down);
    wide.bottom = std::max(wide.bottom, window.y + down);
    wide.widest = std::max(wide.widest, window.width);
  }
  return wide;
}

}  // namespace kelto::motion
