// The commands of `kelto`, a word of the command line each.
#pragma once

#include <span>
#include <string>

#include "host/base/library.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// Adds a command to `app`, which runs when the command line is parsed and throws Error. Null in a
/// build without what the command needs.
using AddCommand = CLI::App* (*)(CLI::App& app);

struct Command {
  const char* name;
  AddCommand add;
  bool reportsEvents;         ///< whether --json has it report what it does as events
  const char* examples = "";  ///< lines for the end of its help, each with its break
};

/// All of them, in the order of --help.
std::span<const Command> Commands();

CLI::App* AddBatch(CLI::App& app);
CLI::App* AddCompletion(CLI::App& app);
CLI::App* AddDoctor(CLI::App& app);
CLI::App* AddHelp(CLI::App& app);
CLI::App* AddEdit(CLI::App& app);
CLI::App* AddInspect(CLI::App& app);
CLI::App* AddNew(CLI::App& app);
CLI::App* AddPlay(CLI::App& app);
CLI::App* AddRender(CLI::App& app);
CLI::App* AddSlideshow(CLI::App& app);
CLI::App* AddStoryboard(CLI::App& app);

/// The libraries that these draw with; none in a build without.
Libraries StoryboardLibraries();
Libraries PlayLibraries();

/// Version, instruction set and libraries, a line each.
std::string VersionText();

}  // namespace kelto::host
