// The option that names the effect's module.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace kelto::host {

/// Declares --module on `command`, in a group of its help.
void DeclareModule(CLI::App& command, const char* group, std::string& module);

}  // namespace kelto::host
