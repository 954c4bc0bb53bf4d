// Which part of the photo a frame draws, and from which cached copy.
//
// The one place where the command asks the module's own code: what the module computes here it
// tells no host, and a second account of it would one day differ.
#pragma once

#include <cstdint>

namespace kelto::host {

struct PixelSize {
  int32_t width = 0;
  int32_t height = 0;
};

/// A render as far as geometry goes.
struct DrawnFrame {
  PixelSize photo;   ///< as the file has it, upright
  PixelSize frame;   ///< the whole frame: a session first draws one, and so has the photo loaded
  PixelSize output;  ///< of the image lent to the effect: of one field, where fields are rendered
  int32_t fieldMode = 0;  ///< a hfxFieldMode
  int32_t videoType = 0;  ///< a hfxVideoType
  int32_t playMode = 0;   ///< a hfxPlayMode
  double displayAspect = 1.0;
  bool squarePixels = true;
  double zoom = 1.0;
  double x = 0.0, y = 0.0;  ///< the view's centre in base rectangles, see render/geometry.h
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

/// The area of a frame of a photo that is loaded.
DrawnArea AreaOf(const DrawnFrame& frame);

}  // namespace kelto::host
