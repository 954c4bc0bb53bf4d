// The options that settle the sandbox, and what commands go on touching in it.
#pragma once

#include <string>
#include <vector>

#include "host/plan/render_plan.h"
#include "host/sandbox/sandbox.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// Declares --sandbox and --no-sandbox on `command`.
void DeclareSandbox(CLI::App& command);

/// What a command touches that loads the effect's module, of which `module` is the name given or
/// empty, and writes the files `outputs`, of which empty names and the standard output are none.
SandboxAccess AccessFor(const std::string& module, const std::vector<std::string>& outputs);

/// Adds the files that a plan is made of.
void AddSources(const RenderPlan& plan, SandboxAccess& access);

}  // namespace kelto::host
