// `kelto render`: a photograph becomes a film.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kelto::host {

/// The options as they were typed; empty where nothing was.
struct RenderArguments {
  std::string photo, output, format, module;
  std::string size = "1920x1080", rate = "25", seconds, frames;
  std::string from, to;
  std::string background = "#000000", fields, playMode = "0";
  /// A word for each of ChoiceLists(), in its order.
  std::vector<std::string> words;
};

/// Declares the command's options on `command`, to be parsed into `arguments`.
void DeclareRender(CLI::App& command, RenderArguments& arguments);

/// Renders the film. Throws Error.
void RunRender(const RenderArguments& arguments);

}  // namespace kelto::host
