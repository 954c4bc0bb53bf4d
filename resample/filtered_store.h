// Filtered bytes on their way into the canvas.
#pragma once

#include "resample/filtered.h"

namespace kelto {

/// Writes `count` bytes of the plan's row `row` from its byte `first` on: as they are where the
/// picture covers a pixel, mixed with what is there where it covers a part.
void StoreFiltered(const FilteredPlan& plan, size_t row, size_t first, size_t count,
                   const uint8_t* bytes);

}  // namespace kelto
