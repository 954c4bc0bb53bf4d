// `kelto play`: a film in a window, in real time.
#pragma once

namespace CLI {
class App;
}

namespace kelto::host {

/// Adds the command to `app`; it runs when it is parsed.
CLI::App* AddPlay(CLI::App& app);

}  // namespace kelto::host
