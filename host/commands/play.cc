#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/base/error.h"
#include "host/commands/module_option.h"
#include "host/commands/plan_options.h"
#include "host/commands/sandbox_option.h"
#include "host/effect/module_file.h"
#include "host/player/player.h"
#include "host/sources/photos.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

/// The options as they were typed; empty where nothing was.
struct PlayOptions {
  std::string input, module;
  PlayerOptions player;
  PlanOptions plan;
};

void Run(const PlayOptions& options) {
  const InterruptsEndAtOnce throughout;  // it loads photographs, and leaves nothing half-written
  // Not yet in the sandbox, where no window could be opened: the player enters it.
  RenderPlan plan = PlanOf(options.input);
  ApplyOptions(options.plan, plan);
  const std::string module = FindModule(options.module);
  SandboxAccess access = AccessFor(options.module, {});
  AddSources(plan, access);
  PlayInWindow(module, plan, LookAtPhoto(plan.photo), access, options.player);
}

}  // namespace

Libraries PlayLibraries() { return WindowLibraries(); }

CLI::App* AddPlay(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "play", "Play a film in a window, in real time; h in the window lists the keys");
  const auto options = std::make_shared<PlayOptions>();
  command->add_option("INPUT", options->input, "The photograph or project")
      ->required()
      ->type_name("");
  constexpr const char* kPlayer = "Player";
  command->add_flag("--loop", options->player.loop, "Start over at the end, instead of pausing")
      ->group(kPlayer);
  command->add_flag("--paused", options->player.paused, "Begin paused at the first frame")
      ->group(kPlayer);
  DeclareModule(*command, kPlayer, options->module);
  DeclarePlan(*command, options->plan);
  command->final_callback([options] { Run(*options); });
  return command;
}

}  // namespace kelto::host
