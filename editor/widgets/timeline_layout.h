// Where the timeline's rows lie, and what is under the pointer.
#pragma once

#include <QRectF>
#include <QSizeF>
#include <optional>
#include <vector>

#include "editor/rules/time_axis.h"
#include "editor/widgets/timeline.h"

namespace kelto::editor {

/// Of the whole width; rows that the scene has no use for are empty.
struct TimelineRows {
  QRectF ruler, stops, sound, speed;
  std::vector<QRectF> lanes;
  double left = 0.0;   ///< of where time begins: names stand before it
  double width = 0.0;  ///< of all the time that is seen
};

/// `low`: as low as they can be read, for small screens. The speed takes what height is left.
TimelineRows RowsOf(const TimelineScene& scene, QSizeF size, bool low);
/// The least height in which all rows have room.
double HeightOf(const TimelineScene& scene, bool low);

/// The width of a stop's block at the least, to be seen and held.
inline constexpr double kNarrowestStop = 12.0;

/// The key within a few pixels of a point.
std::optional<KeyPlace> KeyAt(const TimelineScene& scene, const TimelineRows& rows,
                              const TimeAxis& axis, QPointF at);
/// Those within a rectangle, in order.
std::vector<KeyPlace> KeysIn(const TimelineScene& scene, const TimelineRows& rows,
                             const TimeAxis& axis, const QRectF& area);

/// The stop whose block is at x, -1 for none; of blocks over each other the last.
int StopAt(const TimelineScene& scene, const TimelineRows& rows, const TimeAxis& axis, double x);
/// The stop whose way to the next is at x, -1 for none.
int WayAt(const TimelineScene& scene, const TimeAxis& axis, double x);

}  // namespace kelto::editor
