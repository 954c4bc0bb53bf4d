// Limits that tests work with.
#pragma once

#include "editor/rules/view_limits.h"

namespace kelto::editor {

/// Views of 16:9 over a photo of 4000 x 3000 pixels, in a film of 1920 x 1080.
inline ViewLimits LandscapeLimits(bool beyondEdges = false) {
  ViewLimits limits;
  limits.photoWidth = 4000.0;
  limits.photoHeight = 3000.0;
  limits.shape = 9.0 / 16.0;
  limits.narrowest = 200.0;
  limits.widest = 40000.0;
  limits.frameWidth = 1920.0;
  limits.beyondEdges = beyondEdges;
  return limits;
}

inline host::PhotoRect ViewOf(double x, double y, double width) {
  return {x, y, width, width * 9.0 / 16.0};
}

}  // namespace kelto::editor
