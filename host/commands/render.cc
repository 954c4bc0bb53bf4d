#include "host/commands/render.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/commands/plan_options.h"
#include "host/error.h"
#include "host/film/formats.h"
#include "host/film/output_file.h"
#include "host/session/effect_session.h"
#include "host/session/module_file.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

/// The options as they were typed; empty where nothing was.
struct RenderOptions {
  std::string photo, output, format, module;
  PlanOptions plan;
};

std::string FormatHelp() {
  std::string help = "Kind of film, when the output's name does not end in it:";
  for (const FilmKind& kind : FilmKinds()) {
    help += std::string("\n") + kind.name + ": " + kind.description;
  }
#if !defined(KELTO_FFMPEG)
  help += "\nH.264 films (mp4, mkv, mov) are written by the Linux command only";
#endif
  return help;
}

void Run(const RenderOptions& options) {
  if (options.photo.empty()) throw UsageError("PHOTO is empty; name the photograph");
  if (options.output.empty()) throw UsageError("-o is empty; name the film");
  const RenderPlan plan = PlanFor(options.photo, options.plan);
  const FilmKind& kind = KindFor(options.output, options.format);
  const FilmRequest request{options.output, plan.format, plan.frames};
  CheckRequest(kind, request);
  if (options.output == kStandardOutput && StandardOutputIsTerminal()) {
    throw UsageError("-o -: will not write a film to the terminal; send it to a program or file");
  }
  const std::string module = FindModule(options.module);
  const Photo photo = OpenPhoto(plan.photo);
  if (WouldReplace(kind, request, plan.photo)) {
    throw UsageError(options.output + ": is the photo itself; give the film another name");
  }

  const std::unique_ptr<FrameSink> film = kind.open(request);
  EffectSession session(module, plan, photo, kind.layout);
  session.SetAbortQuery([] { return InterruptSignal() != 0; });
  for (int32_t frame = 0; frame < plan.frames; ++frame) {
    film->Write(session.Render(frame));
    ShowProgress(frame + 1, plan.frames);
  }
  film->Finish();
  ClearProgress();
}

}  // namespace

CLI::App* AddRender(CLI::App& app) {
  CLI::App* command = app.add_subcommand("render", "Make a film of a photograph");
  const auto options = std::make_shared<RenderOptions>();
  command->add_option("PHOTO", options->photo, "The photograph")->required()->type_name("");
  constexpr const char* kFiles = "Files";
  command
      ->add_option("-o,--output", options->output,
                   "The film, replaced if it is there; - writes to the standard output")
      ->group(kFiles)
      ->type_name("FILE")
      ->required();
  command->add_option("--format", options->format, FormatHelp())->group(kFiles)->type_name("KIND");
  command
      ->add_option("--module", options->module,
                   std::string("The effect's module; else the environment variable ") +
                       kModuleVariable + ", else the installed " + kModuleName)
      ->group(kFiles)
      ->type_name("FILE");
  DeclarePlan(*command, options->plan);
  command->final_callback([options] { Run(*options); });
  return command;
}

}  // namespace kelto::host
