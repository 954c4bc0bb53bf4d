// `kelto completion`: scripts for shells, and the manual page.
#pragma once

namespace CLI {
class App;
}

namespace kelto::host {

/// Adds the subcommand, which runs when the command line is parsed.
CLI::App* AddCompletion(CLI::App& app);

}  // namespace kelto::host
