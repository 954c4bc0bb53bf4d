// Draws the timeline.
#pragma once

#include <QPainter>
#include <QPalette>
#include <optional>

#include "editor/rules/time_axis.h"
#include "editor/widgets/timeline_layout.h"

namespace kelto::editor {

struct TimelineDrawing {
  const TimelineScene& scene;
  const TimelineRows& rows;
  TimeAxis axis;
  double seconds = 0.0;  ///< where the film stands
  const std::vector<KeyPlace>& selected;
  std::optional<QRectF> band;  ///< keys are being selected in
  QPalette palette;
};

/// What stays while the film plays.
void DrawTimeline(QPainter& painter, const TimelineDrawing& drawing);

/// The perceived speed of it alone.
void DrawSpeed(QPainter& painter, const TimelineDrawing& drawing);

/// Where the film stands, and the band: above all else.
void DrawMoment(QPainter& painter, const TimelineDrawing& drawing);

/// Pixels across of what marks where the film stands, and a little more.
inline constexpr double kPlaceWidth = 14.0;

}  // namespace kelto::editor
