// What to say of a command line that cannot be parsed.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace kelto::host {

/// What is wrong with `words`, the command line without the program's name, for which the parser
/// threw `error`; with what to do, or the help page to read.
std::string FaultText(const CLI::App& app, const std::vector<std::string>& words,
                      const CLI::ParseError& error);

}  // namespace kelto::host
