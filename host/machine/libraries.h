// The libraries that the command runs with, and the processor.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

struct Library {
  std::string name;
  std::string version;
};

/// Versions as the libraries report them at run time; where one does not, that of its headers.
std::vector<Library> Libraries();

/// The instruction set that a module of this build draws with here: the choice that it makes.
std::string InstructionSet();

}  // namespace kelto::host
