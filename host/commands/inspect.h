// `kelto inspect`: what each frame will show, before it is rendered.
#pragma once

namespace CLI {
class App;
}

namespace kelto::host {

/// Adds the command to `app`; it runs when it is parsed.
CLI::App* AddInspect(CLI::App& app);

}  // namespace kelto::host
