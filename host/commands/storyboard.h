// `kelto storyboard`: a film on one sheet.
#pragma once

namespace CLI {
class App;
}

namespace kelto::host {

/// Adds the command to `app`; it runs when it is parsed.
CLI::App* AddStoryboard(CLI::App& app);

}  // namespace kelto::host
