#include "host/commands/sandbox_option.h"

#include <CLI/CLI.hpp>

#include "host/effect/module_file.h"
#include "host/files/output_file.h"

namespace kelto::host {

void DeclareSandbox(CLI::App& command) {
  command
      .add_flag_function(
          "--sandbox,!--no-sandbox",
          [](int64_t count) {
            SetSandboxUse(count > 0 ? SandboxUse::kRequired : SandboxUse::kNone);
          },
          "Fail where the kernel cannot keep the decoders from other files, the network and other "
          "programs; --no-sandbox does not keep them from anything [what the kernel has]")
      ->group("Safety");
}

SandboxAccess AccessFor(const std::string& module, const std::vector<std::string>& outputs) {
  SandboxAccess access{ModuleFolders(module), {}};
  for (const std::string& output : outputs) {
    if (!output.empty() && output != kStandardOutput) access.writes.push_back(output);
  }
  return access;
}

void AddSources(const RenderPlan& plan, SandboxAccess& access) {
  access.reads.insert(access.reads.end(), {plan.photo, plan.over, plan.audio});
}

}  // namespace kelto::host
