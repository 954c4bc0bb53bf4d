// The command line described as data: what completion scripts and the manual are made from, so that
// no option is listed twice.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kelto::host {

struct OptionFacts {
  std::vector<std::string> names;  ///< with their dashes, "-o", "--output"
  std::string help;
  std::string group;
  std::string value;               ///< what its value is, "WxH"; empty for a flag
  std::vector<std::string> words;  ///< the values there are, where they are few
  bool file = false;               ///< whether the value is the name of a file or folder
  bool repeated = false;           ///< whether it may be given several times
};

struct CommandFacts {
  std::string name, help;
  std::vector<std::string> operands;  ///< "PHOTO"
  std::vector<OptionFacts> options;
};

/// The commands that --help shows, in its order.
std::vector<CommandFacts> CommandsOf(const CLI::App& app);

/// The options of the program itself.
std::vector<OptionFacts> OptionsOf(const CLI::App& app);

/// A script that completes kelto's command line in a shell.
std::string BashScript(const CLI::App& app);
std::string ZshScript(const CLI::App& app);
std::string FishScript(const CLI::App& app);

/// The manual page of the program, in the man macros; it names the pages of the commands.
std::string ManPage(const CLI::App& app);

/// That of a command, kelto-NAME(1). Throws UsageError where there is none of the name.
std::string ManPageOf(const CLI::App& app, const std::string& name);

}  // namespace kelto::host
