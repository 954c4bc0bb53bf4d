#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <utility>

#include "host/base/error.h"
#include "host/commands/module_option.h"
#include "host/commands/option_text.h"
#include "host/commands/plan_options.h"
#include "host/commands/plot_option.h"
#include "host/commands/sandbox_option.h"
#include "host/commands/show_operand.h"
#include "host/effect/module_file.h"
#include "host/faces/face_search.h"
#include "host/facts/film_summary.h"
#include "host/facts/frame_list.h"
#include "host/facts/show_summary.h"
#include "host/files/output_file.h"
#include "host/jobs/beats.h"
#include "host/options/number.h"
#include "host/project/project_file.h"
#include "host/project/show_project.h"
#include "host/sources/photos.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/standard_output.h"

namespace kelto::host {
namespace {

/// The options as they were typed; empty where nothing was.
struct InspectOptions {
  std::string quality, plot, module;
  bool csv = false, json = false, table = false, beats = false;
  ShowOptions show;

  /// The photograph or project, or the first of a show.
  const std::string& Input() const { return show.inputs.front(); }
};

double ParseQuality(const std::string& text) {
  const auto quality = ParseNumber(text);
  if (!quality || !(*quality >= 0.0 && *quality <= 1.0)) {
    throw UsageError("a quality is a number from 0 to 1");
  }
  return *quality;
}

/// What there is to say of the beats of the sound, in a line; nothing where it is not asked for. To
/// be called before the sandbox is entered, which starts no programs.
std::string BeatsLine(const InspectOptions& options) {
  if (!options.beats) return "";
  std::string audio = options.show.plan.audio;
  if (audio.empty() && IsProjectName(options.Input())) {
    const auto show = ReadShow(options.Input());
    audio = show ? show->audio : ReadProject(options.Input()).audio;
  }
  if (audio.empty()) throw UsageError("--beats: there is no sound; name it with --audio");
  return TextOf(BeatsOf(audio)) + "\n";
}

/// Says in a few lines what a show will show.
void RunOnShow(const InspectOptions& options, const CLI::App& command) {
  const std::pair<const char*, bool> given[] = {{"--frames-table", options.table},
                                                {"--csv", options.csv},
                                                {"--json", options.json},
                                                {"--plot", !options.plot.empty()},
                                                {"--quality", !options.quality.empty()}};
  for (const auto& [option, isGiven] : given) {
    if (isGiven) {
      throw UsageError(std::string(option) + ": is for the film of one picture; inspect it alone");
    }
  }
  const std::string beats = BeatsLine(options);
  SandboxAccess access = AccessFor(options.module, {});
  const OpenedShow show = OpenShow(options.show, command, access);
  PrintResult(ShowSummaryText(FindModule(options.module), PlacedPictures(show), FramesOfShow(show),
                              show.audio));
  if (!beats.empty()) PrintResult("beats:  " + beats);
}

void Run(InspectOptions& options, const CLI::App& command) {
  const InterruptsEndAtOnce throughout;  // it loads photographs, and leaves nothing half-written
  if (NamesShow(options.show.inputs)) return RunOnShow(options, command);
  CheckIsShow(options.show);
  const double quality =
      options.quality.empty() ? 1.0 : ReadOption("--quality", options.quality, ParseQuality);
  const std::string beats = BeatsLine(options);
  const RenderPlan plan =
      PlanFor(options.Input(), options.show.plan, AccessFor(options.module, {options.plot}));
  CheckNameIsFree(options.plot, {options.Input(), plan.photo, plan.over, plan.audio});
  const std::string module = FindModule(options.module);
  const Photo photo = LookAtPhoto(PhotoName(plan));
  FrameInspector inspector(module, plan, photo, quality);
  DrawPlot(inspector, photo, options.plot);
  if (options.csv) {
    WriteFrameList(inspector, photo, ListForm::kCsv, PrintResult);
  } else if (options.json) {
    WriteFrameList(inspector, photo, ListForm::kJson, PrintResult);
  } else if (options.table) {
    WriteFrameList(inspector, photo, ListForm::kTable, PrintResult);
  } else if (options.plot.empty()) {
    PrintResult(SummaryText(inspector, photo));
    if (!beats.empty()) PrintResult("beats:        " + beats);
    PrintResult("faces:        " + TextOf(LookForFaces(photo, options.show.plan.views.faceModel)) +
                "\n");
  }
}

}  // namespace

CLI::App* AddInspect(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("inspect", "Say what a film will show: in a few lines, or frame by frame");
  const auto options = std::make_shared<InspectOptions>();
  DeclareShown(*command, options->show.inputs);
  constexpr const char* kList = "List";
  CLI::Option* table = command->add_flag("--frames-table", options->table, "A table of all frames");
  CLI::Option* csv =
      command->add_flag("--csv", options->csv, "All frames as comma-separated values");
  CLI::Option* json = command->add_flag("--json", options->json, "All frames as JSON");
  for (CLI::Option* form : {table, csv, json}) form->group(kList);
  command
      ->add_flag("--beats", options->beats,
                 "Say how many beats the sound has, and how many a minute, as the program "
                 "aubiotrack finds them")
      ->group(kList);
  json->excludes(csv)->excludes(table);
  csv->excludes(table);
  command
      ->add_option(
          "--quality", options->quality,
          "Quality that the film is rendered in: 1, or 0.5 and less for the fastest filter "
          "[1]")
      ->group(kList)
      ->type_name("Q");
  DeclarePlot(*command, kList, options->plot);
  DeclareModule(*command, kList, options->module);
  DeclareTimes(*command, "Film", options->show);
  DeclarePlan(*command, options->show.plan);
  command->final_callback([options, command] { Run(*options, *command); });
  return command;
}

}  // namespace kelto::host
