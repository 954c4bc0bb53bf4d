// Where a film looks at its picture.
#pragma once

namespace kelto {

/// The zooms that the effect's parameter "size" accepts.
constexpr double kMinZoom = 0.1;
constexpr double kMaxZoom = 20.0;

/// `zoom` is the magnification: at 1 the view is the picture fitted to the frame, the base
/// rectangle (framing/frame_rects.h). The centre is in widths and heights of the base rectangle, or
/// of the view itself below zoom 1: (0, 0) is the middle of the picture; positive is right and
/// down.
struct View {
  double zoom = 1.0;
  double centreX = 0.0, centreY = 0.0;
  bool operator==(const View&) const = default;
};

}  // namespace kelto
