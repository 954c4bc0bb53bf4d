#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/base/error.h"
#include "host/commands/option_text.h"
#include "host/commands/plan_options.h"
#include "host/commands/sandbox_option.h"
#include "host/effect/module_file.h"
#include "host/facts/frame_list.h"
#include "host/files/output_file.h"
#include "host/options/number.h"
#include "host/sources/photos.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/standard_output.h"
#if defined(KELTO_CAIRO)
#include "host/drawing/motion_plot.h"
#endif

namespace kelto::host {
namespace {

/// The options as they were typed; empty where nothing was.
struct InspectOptions {
  std::string input, quality, plot, module;
  bool csv = false, json = false;
  PlanOptions plan;
};

double ParseQuality(const std::string& text) {
  const auto quality = ParseNumber(text);
  if (!quality || !(*quality >= 0.0 && *quality <= 1.0)) {
    throw UsageError("a quality is a number from 0 to 1");
  }
  return *quality;
}

void Run(const InspectOptions& options) {
  const InterruptsEndAtOnce throughout;  // it loads photographs, and leaves nothing half-written
  const double quality =
      options.quality.empty() ? 1.0 : ReadOption("--quality", options.quality, ParseQuality);
  const RenderPlan plan =
      PlanFor(options.input, options.plan, AccessFor(options.module, {options.plot}));
  CheckNameIsFree(options.plot, {options.input, plan.photo, plan.over, plan.audio});
  const std::string module = FindModule(options.module);
  const Photo photo = LookAtPhoto(plan.photo);
  FrameInspector inspector(module, plan, photo, quality);
#if defined(KELTO_CAIRO)
  if (!options.plot.empty()) DrawMotionPlot(inspector, photo, options.plot);
#endif
  if (options.csv) {
    WriteFrameList(inspector, photo, ListForm::kCsv, PrintResult);
  } else if (options.json) {
    WriteFrameList(inspector, photo, ListForm::kJson, PrintResult);
  } else if (options.plot.empty()) {
    WriteFrameList(inspector, photo, ListForm::kTable, PrintResult);
  }
}

}  // namespace

CLI::App* AddInspect(CLI::App& app) {
  CLI::App* command = app.add_subcommand("inspect", "List what each frame of a film will show");
  const auto options = std::make_shared<InspectOptions>();
  command->add_option("INPUT", options->input, "The photograph or project")
      ->required()
      ->type_name("");
  constexpr const char* kList = "List";
  CLI::Option* csv = command->add_flag("--csv", options->csv, "As comma-separated values");
  csv->group(kList);
  command->add_flag("--json", options->json, "As JSON")->group(kList)->excludes(csv);
  command
      ->add_option("--quality", options->quality,
                   "What the effect is told in renders: 1 for all of it, 0.5 and less for its "
                   "fastest filter [1]")
      ->group(kList)
      ->type_name("Q");
#if defined(KELTO_CAIRO)
  command
      ->add_option("--plot", options->plot,
                   "Draw position, zoom and speed over time into this file, .svg or .png; no table "
                   "is printed then unless --csv or --json asks for it")
      ->group(kList)
      ->type_name("FILE");
#endif
  command
      ->add_option("--module", options->module,
                   std::string("The effect's module; else the environment variable ") +
                       kModuleVariable + ", else the installed " + kModuleName)
      ->group(kList)
      ->type_name("FILE");
  DeclarePlan(*command, options->plan);
  command->final_callback([options] { Run(*options); });
  return command;
}

}  // namespace kelto::host
