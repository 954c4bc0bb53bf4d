#include "editor/rules/stop_times.h"

#include <algorithm>
#include <cmath>

namespace kelto::editor {
namespace {

double InFrames(double seconds, double frameSeconds) {
  return std::round(seconds / frameSeconds) * frameSeconds;
}

}  // namespace

double ArrivalOf(std::span<const StopTime> times, size_t stop) {
  double seconds = 0.0;
  for (size_t before = 0; before < stop; ++before) seconds += times[before].hold + times[before].go;
  return seconds;
}

double LengthOf(std::span<const StopTime> times) {
  if (times.empty()) return 0.0;
  return ArrivalOf(times, times.size() - 1) + times.back().hold;
}

double TimeOf(std::span<const StopTime> times, const TimeEdge& edge) {
  return ArrivalOf(times, edge.stop) + (edge.departure ? times[edge.stop].hold : 0.0);
}

std::optional<TimeEdge> EdgeAt(std::span<const StopTime> times, double seconds, double reach) {
  std::optional<TimeEdge> nearest;
  double distance = reach, arrival = 0.0;
  const auto consider = [&](const TimeEdge& edge, double at) {
    const double away = std::abs(at - seconds);
    // At the same place, the later one is right of it.
    if (away > distance || (nearest && away == distance && seconds <= at)) return;
    nearest = edge;
    distance = away;
  };
  for (size_t stop = 0; stop < times.size(); ++stop) {
    if (stop > 0) consider({stop, false}, arrival);
    consider({stop, true}, arrival + times[stop].hold);
    arrival += times[stop].hold + times[stop].go;
  }
  return nearest;
}

StopTimes EdgeDragged(std::span<const StopTime> times, const TimeEdge& edge, double seconds,
                      bool ripple, double frameSeconds) {
  StopTimes dragged(times.begin(), times.end());
  if (edge.stop >= times.size() || (edge.stop == 0 && !edge.departure)) return dragged;
  const bool last = edge.stop + 1 == times.size();
  // What ends at the edge, and what begins there.
  double& before = edge.departure ? dragged[edge.stop].hold : dragged[edge.stop - 1].go;
  const double least = edge.departure ? 0.0 : frameSeconds;
  const double begin = TimeOf(times, edge) - before;
  if (ripple || (edge.departure && last)) {
    before = std::max(least, InFrames(seconds - begin, frameSeconds));
    // A film of one view, or that goes nowhere, still has a frame.
    if (LengthOf(dragged) < frameSeconds) before = frameSeconds;
    return dragged;
  }
  double& after = edge.departure ? dragged[edge.stop].go : dragged[edge.stop].hold;
  const double leastAfter = edge.departure ? frameSeconds : 0.0;
  const double both = before + after;
  if (both < least + leastAfter) return dragged;  // no room on either side
  before = std::clamp(InFrames(seconds - begin, frameSeconds), least, both - leastAfter);
  after = both - before;
  return dragged;
}

}  // namespace kelto::editor
