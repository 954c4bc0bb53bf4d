// `kelto batch`: many pictures become a film each.
#pragma once

namespace CLI {
class App;
}

namespace kelto::host {

/// Adds the subcommand, which runs when the command line is parsed. It throws Error.
CLI::App* AddBatch(CLI::App& app);

}  // namespace kelto::host
