// Which part of a picture a frame shows, and where in the frame it lies.
#pragma once

#include <cstdint>

#include "framing/pixel_size.h"
#include "framing/rect.h"
#include "framing/view.h"

namespace kelto {

/// A frame as far as geometry goes. Taken as it comes: of sizes, aspects and zooms that are not
/// above 0 the rectangles make no sense, and the resampler draws none of the picture.
struct FrameGeometry {
  PixelSize output;            ///< of the output image: of one field, where fields are rendered
  int32_t fieldMode = 0;       ///< hfxFieldMode
  double displayAspect = 1.0;  ///< width over height of the frame as shown
  bool squarePixels = true;    ///< of the picture
  int32_t videoType = 0;       ///< hfxVideoType; matters only without square pixels
};

struct FrameRects {
  RectF source;  ///< in picture pixels; may reach outside the picture
  RectF target;  ///< in frame pixels; of the whole frame also when one field is rendered
};

/// The picture fitted to the frame's aspect about its centre (landscape by width, others by
/// height, whatever the frame's aspect), scaled by the zoom and moved to the view's centre.
/// `picture` is the size of the cached copy; 0 x 0 for none.
FrameRects ComputeFrameRects(const FrameGeometry& frame, PixelSize picture, const View& view);

}  // namespace kelto
