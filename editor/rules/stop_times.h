// The times of a film's stops, and what drags on the timeline make of them.
#pragma once

#include <optional>
#include <span>
#include <vector>

namespace kelto::editor {

/// In seconds; neither is below 0.
struct StopTime {
  double hold = 0.0;  ///< how long the view is looked at
  double go = 0.0;    ///< of the way to the next; of the last stop without meaning
  bool operator==(const StopTime&) const = default;
};

using StopTimes = std::vector<StopTime>;

/// Where a stop's hold begins.
double ArrivalOf(std::span<const StopTime> times, size_t stop);
/// The seconds of all.
double LengthOf(std::span<const StopTime> times);

/// An edge on the timeline: where a stop is reached or left. The last one's departure is the film's
/// end. The first stop's arrival is the film's beginning, which cannot be dragged.
struct TimeEdge {
  size_t stop = 0;
  bool departure = false;
  bool operator==(const TimeEdge&) const = default;
};

double TimeOf(std::span<const StopTime> times, const TimeEdge& edge);

/// The edge within `reach` seconds of a time. Where several lie at one place, as those of a stop
/// that is not held: left of it the arrival, right of it the departure.
std::optional<TimeEdge> EdgeAt(std::span<const StopTime> times, double seconds, double reach);

/// The times when `edge` has been dragged to `seconds`, in steps of whole frames. What lies before
/// the edge grows and what lies behind it shrinks, so that the film keeps its length; with
/// `ripple`, and at the film's end, all that follows moves along. A way keeps a frame at the least.
StopTimes EdgeDragged(std::span<const StopTime> times, const TimeEdge& edge, double seconds,
                      bool ripple, double frameSeconds);

}  // namespace kelto::editor
