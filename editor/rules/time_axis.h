// Where times lie on the timeline.
#pragma once

namespace kelto::editor {

/// `left` is the x of `begin`, in pixels.
struct TimeAxis {
  double left = 0.0, begin = 0.0, pixelsPerSecond = 100.0;
  bool operator==(const TimeAxis&) const = default;

  double ToX(double seconds) const { return left + (seconds - begin) * pixelsPerSecond; }
  double ToSeconds(double x) const { return begin + (x - left) / pixelsPerSecond; }
};

/// All of a film between `left` and `left + width`.
TimeAxis FittedAxis(double length, double left, double width);

/// `axis`, `factor` times as long about an x that keeps its time: no shorter than the whole film,
/// no longer than 40 pixels a frame, and without room before the film or behind it.
TimeAxis ZoomedAxis(const TimeAxis& axis, double x, double factor, double length,
                    double frameSeconds, double width);

/// `axis` moved by pixels, as far as there is film.
TimeAxis MovedAxis(const TimeAxis& axis, double pixels, double length, double width);

}  // namespace kelto::editor
