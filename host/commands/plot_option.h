// A film's motion as a diagram, in builds that can draw one.
#pragma once

#include <string>

#include "host/facts/frame_facts.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// Declares --plot on `command`, to be parsed into `file`, which must outlive the parsing. A build
/// without Cairo has no such option.
void DeclarePlot(CLI::App& command, const char* group, std::string& file);

/// Draws the diagram that --plot asks for; nothing when `file` is empty. Throws Error.
void DrawPlot(FrameInspector& inspector, const Photo& photo, const std::string& file);

}  // namespace kelto::host
