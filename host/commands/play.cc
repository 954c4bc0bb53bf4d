#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <utility>

#include "host/base/error.h"
#include "host/commands/module_option.h"
#include "host/commands/plan_options.h"
#include "host/commands/sandbox_option.h"
#include "host/commands/show_operand.h"
#include "host/effect/module_file.h"
#include "host/files/path_text.h"
#include "host/jobs/show_film.h"
#include "host/player/player.h"
#include "host/sources/photos.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

/// The options as they were typed; empty where nothing was.
struct PlayOptions {
  std::string module;
  PlayerOptions player;
  ShowOptions show;

  /// The photograph or project, or the first of a show.
  const std::string& Input() const { return show.inputs.front(); }
};

/// The show as the player plays it. Its plans are looked at by other processes.
PlayerFilm ShowToPlay(const PlayOptions& options, const CLI::App& command,
                      const std::string& module, SandboxAccess& access) {
  OpenedShow show = OpenShow(options.show, command, access, true);
  PlayerFilm film{ShownName(options.show.inputs), show.plans.plans.front().format,
                  FramesOfShow(show)};
  film.target = ShowsTarget(show.plans.plans.front());
  for (const int32_t begin : BeginningsOf(show.plans.plans, show.plans.fades)) {
    film.marks.push_back(static_cast<double>(show.title.Lead() + begin) /
                         std::max(film.frames - 1, 1));
  }
  film.marks.pop_back();
  for (RenderPlan& plan : show.plans.plans) plan = ForPlaying(std::move(plan));
  film.open = [module, show] {
    return std::make_unique<ShowFilm>(
        module, ShowScenes{show.plans.plans, show.plans.photos, show.plans.fades, show.fadeKind,
                           show.title});
  };
  return film;
}

PlayerFilm PictureToPlay(const PlayOptions& options, const std::string& module,
                         SandboxAccess& access) {
  CheckIsShow(options.show);
  RenderPlan plan = PlanOf(options.Input());
  ApplyOptions(options.show.plan, plan);
  AddSources(plan, access);
  return FilmToPlay(module, plan, LookThroughPhoto(PhotoName(plan)));
}

void Run(PlayOptions& options, const CLI::App& command) {
  const InterruptsEndAtOnce throughout;  // it loads photographs, and leaves nothing half-written
  // Not yet in the sandbox, where no window could be opened: the player enters it.
  const std::string module = FindModule(options.module);
  SandboxAccess access = AccessFor(options.module, {});
  const PlayerFilm film = NamesShow(options.show.inputs)
                              ? ShowToPlay(options, command, module, access)
                              : PictureToPlay(options, module, access);
  PlayInWindow(film, access, options.player);
}

}  // namespace

Libraries PlayLibraries() { return WindowLibraries(); }

CLI::App* AddPlay(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "play", "Play a film in a window, in real time; h in the window lists the keys");
  const auto options = std::make_shared<PlayOptions>();
  DeclareShown(*command, options->show.inputs);
  constexpr const char* kPlayer = "Player";
  command->add_flag("--loop", options->player.loop, "Start over at the end, instead of pausing")
      ->group(kPlayer);
  command->add_flag("--paused", options->player.paused, "Begin paused at the first frame")
      ->group(kPlayer);
  DeclareModule(*command, kPlayer, options->module);
  DeclareTimes(*command, "Film", options->show);
  DeclarePlan(*command, options->show.plan);
  command->final_callback([options, command] { Run(*options, *command); });
  return command;
}

}  // namespace kelto::host
