// `kelto new`: a photograph's project file.
#pragma once

namespace CLI {
class App;
}

namespace kelto::host {

/// Adds the subcommand, which runs when the command line is parsed. It throws Error.
CLI::App* AddNew(CLI::App& app);

}  // namespace kelto::host
