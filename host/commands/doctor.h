// `kelto doctor`, and what `kelto --version` tells.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace kelto::host {

/// Adds the subcommand, which runs when the command line is parsed. It throws ToldError when the
/// command cannot render here.
CLI::App* AddDoctor(CLI::App& app);

/// Version, instruction set and libraries, a line each.
std::string VersionText();

}  // namespace kelto::host
