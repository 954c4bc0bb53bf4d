// Where the canvas shows the photo.
#pragma once

#include "editor/rules/view_limits.h"

namespace kelto::editor {

/// A place on the canvas, in its own pixels.
struct CanvasPoint {
  double x = 0.0, y = 0.0;
  bool operator==(const CanvasPoint&) const = default;
};

struct CanvasSize {
  double width = 1.0, height = 1.0;
};

struct CanvasTransform {
  double scale = 1.0;            ///< canvas pixels a photo pixel
  double left = 0.0, top = 0.0;  ///< where the photo's upper left corner lies on the canvas
  bool operator==(const CanvasTransform&) const = default;

  CanvasPoint ToCanvas(PhotoPoint point) const;
  PhotoPoint ToPhoto(CanvasPoint point) const;
};

/// All of the photo in the middle of the canvas, `margin` from its edges.
CanvasTransform FittedTransform(const ViewLimits& photo, CanvasSize canvas, double margin);

/// `transform`, `factor` times as large about a point of the canvas that stays where it is, but not
/// beyond 32 canvas pixels a photo pixel, nor so small that the photo takes less than 64 pixels.
CanvasTransform ZoomedAbout(const CanvasTransform& transform, CanvasPoint point, double factor,
                            const ViewLimits& photo);

/// `transform` moved by canvas pixels, as far as the photo stays in sight.
CanvasTransform MovedBy(const CanvasTransform& transform, double right, double down,
                        const ViewLimits& photo, CanvasSize canvas);

}  // namespace kelto::editor
