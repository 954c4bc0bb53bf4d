// The keys of one parameter, and what drags and double clicks make of them.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "host/plan/setting.h"

namespace kelto::editor {

/// Positions 0..1 over the film, in order. `selected` are places in `times`, in order. Moves the
/// selected keys by `by` together, each clear of the others by `gap` at the least and within the
/// film; returns all times in their places.
std::vector<double> KeysMoved(std::span<const double> times, std::span<const size_t> selected,
                              double by, double gap);

/// Adds a key at this time, 0..1 over the film, to `keys`, which are in order and not none: of
/// numbers and points the value on the way from one to the next, of all else the one before.
/// Returns its place.
size_t AddKey(std::vector<host::SettingKey>& keys, double time);

}  // namespace kelto::editor
