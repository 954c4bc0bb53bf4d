// Position, zoom and speed over time as a diagram.
#pragma once

#include <string>

#include "host/facts/frame_facts.h"

namespace kelto::host {

/// Draws the film that the inspector's plan makes into `file`, .png or .svg. Throws Error.
void DrawMotionPlot(FrameInspector& inspector, const Photo& photo, const std::string& file);

}  // namespace kelto::host
