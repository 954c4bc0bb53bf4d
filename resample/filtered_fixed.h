// The filtered path in vectors, in fixed point.
#pragma once

#include "resample/filtered.h"
#include "resample/fixed_weights.h"

namespace kelto {

/// Draws a plan as DrawFiltered does, on the current target, within one level of it; exact for a
/// constant picture, and the same on every target. `filters` are the plan's tables. Returns the
/// target as the code that drew names it.
///
/// Memory: 1 KiB for every four source pixels in twice what neighbouring columns need (in that and
/// 48 such groups more, when it is little), and two bytes for each byte of the picture's columns in
/// as many rows as a destination row needs and up to 64 more. Only where the engine is built with
/// vectors.
Target DrawFilteredFixed(const FilteredPlan& plan, const FixedFilters& filters);

}  // namespace kelto
