#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/base/error.h"
#include "host/commands/option_text.h"
#include "host/commands/plan_options.h"
#include "host/commands/sandbox_option.h"
#include "host/files/output_file.h"
#include "host/files/path_text.h"
#include "host/project/project_file.h"
#include "host/sources/photos.h"

namespace kelto::host {
namespace {

struct NewOptions {
  std::string photo, output;
  bool force = false;
  PlanOptions plan;
};

void Run(const NewOptions& options) {
  if (options.photo.empty()) throw UsageError("PHOTO is empty; name the photograph");
  const std::string output =
      !options.output.empty() ? options.output : TextOf(PathOf(options.photo).stem()) + ".json";
  if (!options.force) CheckIsNew(output);
  PlanOptions plan = options.plan;
  // Without a word about the view, a project begins with a move that is worth looking at.
  const ViewOptions& views = plan.views;
  const bool toldViews = !views.from.empty() || !views.to.empty() || !views.views.empty() ||
                         !views.move.empty() || IsProjectName(options.photo);
  if (!toldViews) plan.views.move = "in";
  const RenderPlan made = PlanFor(options.photo, plan, AccessFor("", {output}));
  LookAtPhoto(PhotoName(made));
  WriteProject(output, made);
}

}  // namespace

CLI::App* AddNew(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("new", "Write a project file, to be changed by hand and rendered");
  const auto options = std::make_shared<NewOptions>();
  command->add_option("PHOTO", options->photo, "The photograph, or a project to begin from")
      ->required()
      ->type_name("");
  command
      ->add_option("-o,--output", options->output,
                   "The project, .json [the photograph's name, in the current folder]; - writes to "
                   "the standard output")
      ->group("Files")
      ->type_name("FILE")
      ->check(FileText);
  command->add_flag("--force", options->force, "Replace a file of that name")->group("Files");
  DeclarePlan(*command, options->plan);
  command->get_option("--move")->description(command->get_option("--move")->get_description() +
                                             " [in]");
  command->final_callback([options] { Run(*options); });
  return command;
}

}  // namespace kelto::host
