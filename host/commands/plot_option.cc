#include "host/commands/plot_option.h"

#include <CLI/CLI.hpp>

#include "host/drawing/motion_plot.h"

namespace kelto::host {

void DeclarePlot(CLI::App& command, const char* group, std::string& file) {
  command
      .add_option("--plot", file,
                  "Draw position, zoom and speed over time into this file, .svg or .png; no text "
                  "is printed then unless another option asks for it")
      ->group(group)
      ->type_name("FILE");
}

void DrawPlot(FrameInspector& inspector, const Photo& photo, const std::string& file) {
  if (!file.empty()) DrawMotionPlot(inspector, photo, file);
}

}  // namespace kelto::host
