#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/base/error.h"
#include "host/commands/module_option.h"
#include "host/commands/option_text.h"
#include "host/commands/plan_options.h"
#include "host/commands/sandbox_option.h"
#include "host/commands/show_operand.h"
#include "host/drawing/drawing.h"
#include "host/drawing/show_storyboard.h"
#include "host/drawing/storyboard.h"
#include "host/effect/module_file.h"
#include "host/files/output_file.h"
#include "host/files/path_text.h"
#include "host/options/number.h"
#include "host/processes/reader_process.h"
#include "host/sources/photos.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

/// Sheets of more would be taller than pictures may be.
constexpr int32_t kMaxStrip = 120;

/// The options as they were typed; empty where nothing was.
struct Options {
  std::string output, strip, module;
  ShowOptions show;

  /// The photograph or project, or the first of a show.
  const std::string& Input() const { return show.inputs.front(); }
};

int32_t ParseStrip(const std::string& text) {
  const auto frames = ParseWhole(text);
  if (!frames || *frames < 1 || *frames > kMaxStrip) {
    throw UsageError("a strip has 1 to " + std::to_string(kMaxStrip) + " frames");
  }
  return static_cast<int32_t>(*frames);
}

void WriteSheet(const std::string& output, const std::string& bytes) {
  OutputFile file(output);
  file.Write(bytes.data(), bytes.size());
  file.Finish();
}

void RunOnShow(const Options& options, const CLI::App& command) {
  ShowSheet sheet{options.output, ShownName(options.show.inputs)};
  if (!options.strip.empty()) sheet.frames = ReadOption("--strip", options.strip, ParseStrip);
  SandboxAccess access = AccessFor(options.module, {options.output});
  const OpenedShow show = OpenShow(options.show, command, access);
  for (const std::string& input : options.show.inputs) CheckNameIsFree(options.output, {input});
  std::vector<std::string> reads = ModuleFolders(options.module);
  for (const RenderPlan& plan : show.plans.plans) {
    CheckNameIsFree(options.output, {plan.photo, plan.over});
    reads.insert(reads.end(), {plan.photo, plan.over});
  }
  const std::string module = FindModule(options.module);
  const std::vector<PictureOfShow> pictures = PlacedPictures(show);
  sheet.total = FramesOfShow(show);
  // Apart, since it decodes the photos; this process writes what comes of it.
  WriteSheet(options.output, ReadApart(options.Input(), reads, [&] {
               return DrawShowStoryboard(module, pictures, sheet);
             }));
}

void RunOnPicture(const Options& options) {
  StoryboardOptions sheet;
  sheet.file = options.output;
  if (!options.strip.empty()) sheet.frames = ReadOption("--strip", options.strip, ParseStrip);
  const RenderPlan plan =
      PlanFor(options.Input(), options.show.plan, AccessFor(options.module, {options.output}));
  CheckNameIsFree(options.output, {options.Input(), plan.photo, plan.over, plan.audio});
  const std::string module = FindModule(options.module);
  const Photo photo = LookThroughPhoto(PhotoName(plan));
  // Apart, since it decodes the photo; this process writes what comes of it.
  std::vector<std::string> reads = ModuleFolders(options.module);
  reads.push_back(plan.over);
  WriteSheet(options.output, ReadApart(plan.photo, reads,
                                       [&] { return DrawStoryboard(module, plan, photo, sheet); }));
}

void Run(Options& options, const CLI::App& command) {
  const InterruptsEndAtOnce throughout;  // it loads photographs, and leaves nothing half-written
  if (NamesShow(options.show.inputs)) return RunOnShow(options, command);
  CheckIsShow(options.show);
  RunOnPicture(options);
}

}  // namespace

Libraries StoryboardLibraries() { return DrawingLibraries(); }

CLI::App* AddStoryboard(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "storyboard", "Draw a film on one sheet: the photo with the views, and some frames");
  const auto options = std::make_shared<Options>();
  DeclareShown(*command, options->show.inputs);
  constexpr const char* kSheet = "Sheet";
  command->add_option("-o,--output", options->output, "The sheet, .png or .svg")
      ->group(kSheet)
      ->type_name("FILE")
      ->check(FileText)
      ->required();
  command
      ->add_option("--strip", options->strip,
                   "Frames under the photo [12]; of a show, beside each photo [3]")
      ->group(kSheet)
      ->type_name("N");
  DeclareModule(*command, kSheet, options->module);
  DeclareTimes(*command, "Film", options->show);
  DeclarePlan(*command, options->show.plan);
  command->final_callback([options, command] { Run(*options, *command); });
  return command;
}

}  // namespace kelto::host
