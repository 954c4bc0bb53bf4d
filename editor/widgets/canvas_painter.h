// Draws what lies over the photo on the canvas.
#pragma once

#include <QPainter>
#include <optional>

#include "editor/rules/canvas_transform.h"
#include "editor/widgets/canvas.h"

namespace kelto::editor {

/// Half a handle's side, in canvas pixels.
inline constexpr double kHandle = 4.5;

struct CanvasOverlay {
  const CanvasScene& scene;
  CanvasTransform transform;
  QRectF canvas;          ///< all of it
  double seconds = -1.0;  ///< where the film stands, below 0 for nowhere
  std::optional<double> snappedX, snappedY;
};

QRectF OnCanvas(const host::PhotoRect& part, const CanvasTransform& transform);

/// The views that are not selected, which a drag of the selected one leaves as they are.
void DrawOtherViews(QPainter& painter, const CanvasOverlay& overlay);

/// The way through all views.
void DrawWay(QPainter& painter, const CanvasOverlay& overlay);

/// What lies above these.
void DrawOverlay(QPainter& painter, const CanvasOverlay& overlay);

}  // namespace kelto::editor
