#include "host/commands/slideshow.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "host/commands/film_options.h"
#include "host/commands/option_text.h"
#include "host/commands/plan_options.h"
#include "host/error.h"
#include "host/film/output_file.h"
#include "host/jobs/film_job.h"
#include "host/jobs/picture_list.h"
#include "host/jobs/slideshow.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/session/module_file.h"
#include "host/session/photo.h"
#include "host/terminal/events.h"
#include "host/terminal/progress.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

constexpr const char* kUsualEach = "5";
constexpr const char* kUsualFade = "1";

/// The options as they were typed; empty where nothing was.
struct SlideshowOptions {
  std::string input, output;
  std::string each = kUsualEach, fade = kUsualFade;
  FilmOptions film;
  PlanOptions plan;
};

/// Whole frames of a fade; none for 0.
int32_t ParseFade(const std::string& text, FrameRate rate) {
  return ParseNumber(text) == 0.0 ? 0 : FramesOf(ParseSeconds(text), rate);
}

Slideshow ShowFor(const SlideshowOptions& options) {
  if (options.output.empty()) throw UsageError("-o is empty; name the film");
  Slideshow show;
  PlanOptions each = options.plan;
  each.seconds = ReadOption("--each", options.each, [](const std::string& text) {
    ParseSeconds(text);  // so that a complaint names this option
    return text;
  });
  for (const std::string& picture : PicturesOf(options.input)) {
    show.plans.push_back(PlanFor(picture, each));
  }
  const RenderPlan& first = show.plans.front();
  show.each = first.frames;
  show.fade = ReadOption("--fade", options.fade, [&](const std::string& text) {
    return ParseFade(text, first.format.rate);
  });
  // Half of a photograph's time may end within a frame: rounded up, two of it would not fit.
  if (2.0 * ParseNumber(options.fade).value_or(0.0) <= ParseSeconds(options.each)) {
    show.fade = std::min(show.fade, show.each / 2);
  }
  if (2 * int64_t{show.fade} > show.each) {
    throw UsageError("--fade " + options.fade + ": two fades do not fit into --each " +
                     options.each);
  }
  show.kind = &KindFor(options.output, options.film.format);
  show.request = {options.output, first.format,
                  SlideshowFrames(show.plans.size(), show.each, show.fade), options.film.codec,
                  options.plan.audio};
  show.workers = JobsAsked(options.film, CoreCount());
  return show;
}

/// Throws what can be known to go wrong before any work.
void Check(const SlideshowOptions& options, const Slideshow& show) {
  std::vector<std::string> sources = PicturesOf(options.input);
  sources.insert(sources.end(), {options.input, show.request.audio});
  for (const RenderPlan& plan : show.plans) {
    sources.insert(sources.end(), {plan.photo, plan.over});
  }
  CheckFilm(*show.kind, show.request, sources);
  for (const RenderPlan& plan : show.plans) {
    OpenPhoto(plan.photo);
    const FilmFormat &format = plan.format, &film = show.request.format;
    if (format.size != film.size || format.rate != film.rate || format.fields != film.fields ||
        format.DisplayAspect() != film.DisplayAspect() || plan.frames != show.each) {
      throw UsageError(
          plan.photo +
          ": would be another kind of film than the first, by its project or the "
          "first's; say --size, --fps and --fields for all, and give projects one displayAspect");
    }
  }
}

void Run(const SlideshowOptions& options) {
  ApplyReporting(options.film);
  Slideshow show = ShowFor(options);
  show.module = FindModule(options.film.module);
  Check(options, show);
  const bool events = CurrentReporting() == Reporting::kJson;
  if (events) {
    PrintEvent("start", {{"output", options.output}, {"frames", int64_t{show.request.frames}}});
  }
  {
    Progress progress("frame", show.request.frames);
    MakeSlideshow(show, [&](int32_t done) { progress.Show(done); });
  }
  if (events) PrintEvent("done", {{"output", options.output}});
}

}  // namespace

CLI::App* AddSlideshow(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("slideshow", "Make one film of many photographs, with cross-fades");
  const auto options = std::make_shared<SlideshowOptions>();
  command
      ->add_option("INPUT", options->input,
                   "A folder of photographs, without the folders in it, or a text file with the "
                   "path of one on each line, relative to that file")
      ->required()
      ->type_name("");
  DeclareOutput(*command, options->output);
  DeclareFilm(*command, options->film,
              "Processes that render, at least two, each with a photograph in memory; the film is "
              "the same [one for each core]");
  constexpr const char* kFilm = "Film";
  command
      ->add_option("--each", options->each,
                   std::string("Seconds for which a photograph is seen, fades included [") +
                       kUsualEach + "]")
      ->group(kFilm)
      ->type_name("TIME");
  command
      ->add_option("--fade", options->fade,
                   std::string("Seconds of a cross-fade, 0 for none [") + kUsualFade + "]")
      ->group(kFilm)
      ->type_name("TIME");
  DeclarePlan(*command, options->plan);
  for (const char* replaced : {"--seconds", "--frames", "--over"}) {
    // Not every build has all of them.
    if (CLI::Option* option = command->get_option_no_throw(replaced); option != nullptr) {
      command->remove_option(option);
    }
  }
  command->final_callback([options] { Run(*options); });
  return command;
}

}  // namespace kelto::host
