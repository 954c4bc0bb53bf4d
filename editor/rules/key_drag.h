// The keys of one parameter, and what drags make of them.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace kelto::editor {

/// Positions 0..1 over the film, in order. `selected` are places in `times`, in order. Moves the
/// selected keys by `by` together, each clear of the others by `gap` at the least and within the
/// film; returns all times in their places.
std::vector<double> KeysMoved(std::span<const double> times, std::span<const size_t> selected,
                              double by, double gap);

}  // namespace kelto::editor
