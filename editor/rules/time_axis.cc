#include "editor/rules/time_axis.h"

#include <algorithm>

namespace kelto::editor {
namespace {

constexpr double kPixelsAFrame = 40.0;

}  // namespace

TimeAxis FittedAxis(double length, double left, double width) {
  return {left, 0.0, std::max(1.0, width) / std::max(length, 1e-3)};
}

TimeAxis ZoomedAxis(const TimeAxis& axis, double x, double factor, double length,
                    double frameSeconds, double width) {
  const double least = FittedAxis(length, axis.left, width).pixelsPerSecond;
  TimeAxis zoomed = axis;
  zoomed.pixelsPerSecond = std::clamp(axis.pixelsPerSecond * factor, least,
                                      std::max(least, kPixelsAFrame / frameSeconds));
  zoomed.begin = axis.ToSeconds(x) - (x - axis.left) / zoomed.pixelsPerSecond;
  return MovedAxis(zoomed, 0.0, length, width);
}

TimeAxis MovedAxis(const TimeAxis& axis, double pixels, double length, double width) {
  TimeAxis moved = axis;
  const double shown = width / axis.pixelsPerSecond;
  moved.begin =
      std::clamp(axis.begin - pixels / axis.pixelsPerSecond, 0.0, std::max(0.0, length - shown));
  return moved;
}

}  // namespace kelto::editor
