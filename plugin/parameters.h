// The effect's parameter panel.
#pragma once

#include "platform/hfx.h"
#include "state/PanZoomState.h"

namespace kelto {

/// Makes the parameters in panel order, each bound to its field of `state`. Returns true.
bool DeclareParameters(PanZoomState& state);

/// The interpolator of "size": the eased zoom at `time` (0..1). False, with nothing written, when
/// the parameter carries no instance or `size` is not that of a double.
bool InterpolateZoom(hfxParameter* parameter, double time, void* result, int32_t size,
                     int32_t reserved);

}  // namespace kelto
