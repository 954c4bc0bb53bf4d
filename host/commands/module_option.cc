#include "host/commands/module_option.h"

#include <CLI/CLI.hpp>

#include "host/effect/module_file.h"

namespace kelto::host {

void DeclareModule(CLI::App& command, const char* group, std::string& module) {
  command
      .add_option("--module", module,
                  std::string("The effect's module; else the environment variable ") +
                      kModuleVariable + ", else the installed " + kModuleName)
      ->group(group)
      ->type_name("FILE");
}

}  // namespace kelto::host
