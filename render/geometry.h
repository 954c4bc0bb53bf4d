// Which part of the picture a frame shows, and where.
#pragma once

#include <cstdint>

#include "resample/job.h"
#include "state/PanZoomState.h"

namespace kelto {

/// Where a view looks: the centre in widths and heights of the base rectangle (0, 0 is the middle
/// of the picture; positive goes right and down), and the magnification.
struct View {
  double zoom = 1.0;
  double centreX = 0.0, centreY = 0.0;
};

/// What the rectangles of a frame follow from: the picture, the output and the view of one on the
/// other. Taken as it comes: of sizes, aspects and zooms that are not above 0 the rectangles make
/// no sense, and the resampler draws none of the picture.
struct FrameGeometry {
  int32_t sourceWidth = 0, sourceHeight = 0;   ///< pixels of the cached picture; 0 x 0 for none
  uint32_t outputWidth = 0, outputHeight = 0;  ///< pixels of the output image
  int32_t fieldMode = 0;                       ///< hfxFieldMode
  double displayAspect = 1.0;                  ///< width over height of the frame as shown
  bool squarePixels = true;
  int32_t videoType = 0;  ///< hfxVideoType; matters only without square pixels
  View view;
};

struct FrameRects {
  RectF source;  ///< in picture pixels; may reach outside the picture
  RectF target;  ///< in frame pixels; of the whole frame also when one field is rendered
};

/// The picture fitted to the frame's aspect about its centre (landscape by width, others by
/// height, whatever the frame's aspect), scaled by the zoom and moved to the view's centre.
FrameRects ComputeFrameRects(const FrameGeometry& frame);

/// The geometry of an instance's current output, with the picture's size and the view as given.
FrameGeometry GeometryOf(const PanZoomState& state, const hfxImage& output, int32_t sourceWidth,
                         int32_t sourceHeight, const View& view);

}  // namespace kelto
