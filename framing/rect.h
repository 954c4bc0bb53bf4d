// Rectangles in pixels of a picture or a frame.
#pragma once

namespace kelto {

/// Inclusive pixel-centre coordinates: a whole image of width W spans 0.5 .. W - 0.5.
/// Code matches fields by name: collaborators list the four in different orders.
struct RectF {
  float left = 0.0f, top = 0.0f, right = 0.0f, bottom = 0.0f;
};

}  // namespace kelto
