#include <cstdlib>

#include "host/files/start.h"

namespace kelto::host {

std::vector<std::string> CommandLineWords(int argc, char** argv) { return {argv, argv + argc}; }

std::string EnvironmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

void SearchNoLibrariesInTheCurrentFolder() {}

}  // namespace kelto::host
