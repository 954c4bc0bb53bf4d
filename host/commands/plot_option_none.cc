// A build without Cairo.
#include "host/commands/plot_option.h"

namespace kelto::host {

void DeclarePlot(CLI::App&, const char*, std::string&) {}

void DrawPlot(FrameInspector&, const Photo&, const std::string&) {}

}  // namespace kelto::host
