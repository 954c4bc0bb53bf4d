// The way of a film over its photo, as its frames have it, and what is marked on it.
#pragma once

#include <span>
#include <vector>

#include "editor/rules/view_limits.h"
#include "host/options/photo_rect.h"

namespace kelto::editor {

/// What a frame shows.
struct WaySample {
  double seconds = 0.0;  ///< from the beginning of the film
  host::PhotoRect part;  ///< of the photo
  double speed = 0.0;    ///< perceived length a second, see motion/window.h
  bool operator==(const WaySample&) const = default;
};

/// In order of time.
using FilmWay = std::vector<WaySample>;

/// The view at a time, between samples evenly; the first's or last's outside them. `way` is not
/// empty.
host::PhotoRect ViewAt(std::span<const WaySample> way, double seconds);

/// A mark on the way.
struct WayTick {
  double seconds = 0.0;
  PhotoPoint middle;
};

/// Ticks at even times, the first at 0; so far apart that there are `most` at the most. None while
/// the view stands still.
std::vector<WayTick> TicksOn(std::span<const WaySample> way, size_t most);

/// The seconds between ticks: a step of the row 0.1, 0.2, 0.5, 1, 2, 5, ... by which `length`
/// seconds take no more than `most`.
double TickStep(double length, size_t most);

}  // namespace kelto::editor
