// Frames of 16 bits and float, drawn by the deep engine.
#pragma once

#include <string>

#include "adapters/frei0r/frame_parts.h"
#include "adapters/openfx/image.h"

namespace kelto::openfx {

/// Draws a window of a frame into `output`, over `source` where the parts name no colour. `frame`
/// is the whole frame in the output's pixels and holds the window. False where the photograph
/// cannot be read with all its bits, and why in `reason`, if it is to be said. Throws
/// std::bad_alloc.
bool DrawDeepFrame(ofx::Effect effect, const frei0r::Adapter::Parts& parts, const Image* source,
                   const ofx::RectI& frame, const ofx::RectI& window, const Image& output,
                   std::string& reason);

}  // namespace kelto::openfx
