#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <utility>

#include "host/base/error.h"
#include "host/commands/film_options.h"
#include "host/commands/film_report.h"
#include "host/commands/option_text.h"
#include "host/commands/plan_options.h"
#include "host/commands/preview_option.h"
#include "host/commands/sandbox_option.h"
#include "host/effect/module_file.h"
#include "host/files/output_file.h"
#include "host/film/depth.h"
#include "host/jobs/film_job.h"
#include "host/jobs/film_record.h"
#include "host/options/frame_range.h"
#include "host/project/project_file.h"
#include "host/terminal/events.h"
#include "host/terminal/progress.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

/// The options as they were typed; empty where nothing was.
struct RenderOptions {
  std::string photo, output, project, record;
  bool force = false;
  FilmOptions film;
  PlanOptions plan;
  LiveUse preview = LiveUse::kKnown;
};

/// What to render of which plan: --frames says how long the film is, or which part is wanted.
Scene SceneFor(const RenderOptions& options) {
  const std::string& frames = options.plan.frames;
  SandboxAccess access =
      AccessFor(options.film.module, {options.output, options.project, options.record});
  AddDevices(options.film, access);
  if (!IsFrameRange(frames)) {
    return WholeScene(PlanFor(options.photo, options.plan, access));
  }
  PlanOptions others = options.plan;
  others.frames.clear();
  Scene scene = WholeScene(PlanFor(options.photo, others, access));
  scene.part = ReadOption("--frames", frames, [&](const std::string& text) {
    return ParseFrameRange(text, scene.part.Count());
  });
  return scene;
}

FilmJob JobFor(const RenderOptions& options) {
  if (options.photo.empty()) throw UsageError("PHOTO is empty; name the photograph");
  if (options.output.empty()) throw UsageError("-o is empty; name the film");
  FilmJob job;
  job.scene = SceneFor(options);
  const FrameRange& part = job.scene.part;
  const bool whole = !IsFrameRange(options.plan.frames);
  job.kind = &KindFor(options.output, options.film.format);
  job.request.output = options.output;
  job.request.format = job.scene.plan.format;
  job.request.frames = part.Count();
  if (whole) job.request.audio = SoundFor(job.scene.plan, *job.kind);
  job.request.firstNumber = part.first;
  job.request.transparent = job.scene.plan.transparent;
  ApplyToRequest(options.film, job.request);
  job.ends = EndsAsked(options.film, job.request);
  if (!whole && job.ends.in + job.ends.out > 0) {
    throw UsageError("--fade-in and --fade-out are for whole films, not for parts of one");
  }
  if (!whole && !options.plan.audio.empty()) {
    throw UsageError("--audio: parts of a film are silent; add the sound when they are joined");
  }
  job.depth = DepthAskedBy(options.film);
  job.workers = JobsAsked(options.film, UsualWorkers(part.Count()));
  return job;
}

/// Throws UsageError where one of the files to be written is another one of the command's.
void CheckFiles(const RenderOptions& options, const FilmJob& job) {
  const std::pair<const char*, const std::string&> others[] = {{"--save-project", options.project},
                                                               {"--record", options.record}};
  for (const auto& [option, name] : others) {
    if (options.output == kStandardOutput && name == kStandardOutput) {
      throw UsageError(std::string("-o and ") + option + " cannot both be -");
    }
  }
  const RenderPlan& plan = job.scene.plan;
  for (const std::string& other : {options.photo, options.project, options.record}) {
    if (WouldReplace(*job.kind, job.request, other)) throw NameUsedTwice(options.output);
  }
  if (!options.force) CheckIsNew(options.project);
  CheckNameIsFree(options.record,
                  {options.photo, options.project, plan.photo, plan.over, plan.audio});
}

/// Whether `diagnostic` begins with an option that the command line does not have.
bool IsOfOptionNotGiven(const std::string& diagnostic, const CLI::App& command) {
  const CLI::Option* option =
      command.get_option_no_throw(diagnostic.substr(0, diagnostic.find_first_of(" :")));
  return option != nullptr && option->count() == 0;
}

/// Checks the job; what is wrong with a project's values is reported by the project's name.
void CheckJobOf(const RenderOptions& options, FilmJob& job, const CLI::App& command) {
  try {
    CheckJob(job);
  } catch (const UsageError& error) {
    if (!IsProjectName(options.photo) || !IsOfOptionNotGiven(error.what(), command)) throw;
    throw UsageError(options.photo + ": " + error.what());
  }
}

void Run(const RenderOptions& options, const CLI::App& command) {
  ApplyReporting(options.film);
  LivePicture preview(options.preview);
  FilmJob job = JobFor(options);
  job.module = FindModule(options.film.module);
  CheckJobOf(options, job, command);
  CheckFiles(options, job);
  if (!options.project.empty()) {
    RenderPlan saved = job.scene.plan;
    // Without the frame that a loop ends before.
    if (saved.loop) --saved.frames;
    WriteProject(options.project, saved);
  }
  const FilmClock clock;
  const bool events = CurrentReporting() == Reporting::kJson;
  if (events) {
    PrintEvent("start", {{"output", options.output},
                         {"frames", int64_t{job.request.frames}},
                         {"jobs", int64_t{job.workers}}});
  }
  const auto make = [&] {
    Progress progress("frame", job.request.frames);
    const PixelLayout layout = FrameLayout(*job.kind, job.request);
    const double aspect = job.request.format.DisplayAspect();
    MakeFilm(job, [&](int32_t done, const FrameView& frame) {
      preview.Show(frame, layout, aspect);
      progress.Show(done);
    });
  };
  if (options.record.empty()) {
    make();
  } else {
    const RenderPlan& plan = job.scene.plan;
    const bool single = !job.kind->pictures && options.output != kStandardOutput;
    const std::string film = single ? options.output : "";
    MakeOnRecord(options.record,
                 RecordOf({options.photo, plan.photo, plan.over, plan.audio}, WordsGiven(command)),
                 film, make);
  }
  if (events) PrintEvent("done", {{"output", options.output}});
  clock.Report(*job.kind, job.request);
}

}  // namespace

CLI::App* AddRender(CLI::App& app) {
  CLI::App* command = app.add_subcommand("render", "Make a film of a photograph");
  const auto options = std::make_shared<RenderOptions>();
  command->add_option("PHOTO", options->photo, "The photograph, or a project file, .json")
      ->required()
      ->type_name("");
  DeclareOutput(*command, options->output);
  DeclareFilm(*command, options->film,
              "Processes that render, each with a photograph of its own in memory; the film is the "
              "same [one for each core, and for every 25 frames]");
  DeclareDepth(*command, options->film);
  DeclarePreview(*command, options->preview);
  command
      ->add_option("--record", options->record,
                   "Note in this file how the film was made, for kelto batch --resume")
      ->group("Files")
      ->type_name("FILE");
  command
      ->add_option("--save-project", options->project,
                   "Write what the film shows, with all options, into this project file, .json")
      ->group("Files")
      ->type_name("FILE");
  command->add_flag("--force", options->force, "Replace the project that --save-project names")
      ->group("Files");
  DeclarePlan(*command, options->plan);
  command->get_option("--frames")
      ->description("Length in frames; or A..B, frames A to B - 1 of the film, the first being 0");
  command->final_callback([options, command] { Run(*options, *command); });
  return command;
}

}  // namespace kelto::host
