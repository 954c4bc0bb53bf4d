// Which part of a photo a frame draws, and from which cached copy.
#pragma once

#include <cstdint>

#include "framing/frame_rects.h"
#include "framing/pixel_size.h"
#include "framing/view.h"

namespace kelto {

/// A frame or field of a photo, as far as geometry goes.
struct DrawnFrame {
  PixelSize photo;         ///< as the file has it, upright
  PixelSize first;         ///< of the output that the photo was loaded for: a whole frame
  int32_t playMode = 0;    ///< hfxPlayMode
  FrameGeometry geometry;  ///< of the frame or field itself
};

struct DrawnArea {
  /// Edges in pixels of the photo: pixel n reaches from n to n + 1. May lie outside the photo.
  double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;
  /// Photo pixels a frame pixel, of the whole frame where fields are rendered.
  double scaleX = 1.0, scaleY = 1.0;
  /// How far right of and below the area's own point the filters look in the photo: column n shows
  /// it at left + stepX + n * scaleX. Not 0 where they reduce; the area allows for it, so that a
  /// zoom across 1:1 is seen to go on evenly.
  double stepX = 0.0, stepY = 0.0;
  PixelSize cached;      ///< the copy of the photo that is drawn from
  bool reduced = false;  ///< whether that is one made for playing, else the photo as it is
};

/// The area that `view` shows, of a photo that is loaded.
DrawnArea AreaOf(const DrawnFrame& frame, const View& view);

}  // namespace kelto
