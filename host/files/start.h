// What the system hands a program as it starts.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

/// The words of the command line, the program's name first; UTF-8 on Windows, where main's own
/// arguments have lost every letter that the code page lacks.
std::vector<std::string> CommandLineWords(int argc, char** argv);

/// The environment's variable of that name; empty when it is not set.
std::string EnvironmentVariable(const char* name);

/// Keeps the system from looking for libraries in the current folder, where a photograph may have
/// brought some along. To be called before any library is loaded. Linux never does.
void SearchNoLibrariesInTheCurrentFolder();

}  // namespace kelto::host
