// The steps of one frame: image, motion, picture.
#pragma once

#include "platform/hfx.h"
#include "state/PanZoomState.h"

namespace kelto {

/// Reloads the image where it is needed, evaluates the motion and renders. False when the host
/// reports the render aborted.
bool RenderCurrentFrame(PanZoomState& state, const hfxRect& region);

}  // namespace kelto
