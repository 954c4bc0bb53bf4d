#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "host/base/error.h"
#include "host/commands/film_options.h"
#include "host/commands/option_text.h"
#include "host/commands/plan_options.h"
#include "host/commands/sandbox_option.h"
#include "host/effect/module_file.h"
#include "host/files/output_file.h"
#include "host/film/codecs.h"
#include "host/jobs/film_job.h"
#include "host/jobs/picture_list.h"
#include "host/jobs/picture_memory.h"
#include "host/jobs/slideshow.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/sources/photos.h"
#include "host/terminal/events.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/progress.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

constexpr const char* kUsualEach = "5";
/// As long as a fade is usually; shorter where photographs are not seen for twice as long.
constexpr const char* kUsualFade = "1";

/// The options as they were typed; empty where nothing was.
struct SlideshowOptions {
  std::string input, output;
  std::string each = kUsualEach, fade = kUsualFade;
  bool fadeGiven = false;
  FilmOptions film;
  PlanOptions plan;
};

/// Whole frames of a fade; none for 0.
int32_t ParseFade(const std::string& text, FrameRate rate) {
  return ParseNumber(text) == 0.0 ? 0 : FramesOf(ParseSeconds(text), rate);
}

/// Whole frames of a fade between pictures of `each` frames.
int32_t FadeFor(const SlideshowOptions& options, FrameRate rate, int32_t each) {
  const int32_t fade = ReadOption("--fade", options.fade,
                                  [&](const std::string& text) { return ParseFade(text, rate); });
  const double longest = ParseSeconds(options.each) / 2;
  // Half of a photograph's time may end within a frame: rounded up, two of it would not fit.
  const bool fits = ParseNumber(options.fade).value_or(0.0) <= longest;
  if (fits || !options.fadeGiven) return std::min(fade, each / 2);
  if (2 * int64_t{fade} <= each) return fade;
  throw UsageError("--fade " + options.fade + ": two fades do not fit into --each " + options.each +
                   "; --fade " + NumberText(longest) + " is the longest");
}

/// Looks at each photograph, which takes long where they are decoded for it.
template <typename Items, typename Look>
void ForEachPhoto(const Items& photos, const Look& look) {
  Progress progress("photo", static_cast<int64_t>(photos.size()));
  int64_t done = 0;
  for (const auto& photo : photos) {
    const InterruptsEndAtOnce whileItLooks;
    look(photo);
    progress.Show(++done);
  }
}

Slideshow ShowFor(const SlideshowOptions& options, const std::vector<std::string>& pictures) {
  if (options.output.empty()) throw UsageError("-o is empty; name the film");
  // What is quickly found wrong goes before the looking.
  Slideshow show;
  show.kind = &KindFor(options.output, options.film.format);
  // One for each of two pictures at the least.
  show.workers = std::max(2, JobsAsked(options.film, CoreCount()));
  show.module = FindModule(options.film.module);
  PlanOptions each = options.plan;
  each.seconds = ReadOption("--each", options.each, [](const std::string& text) {
    ParseSeconds(text);  // so that a complaint names this option
    return text;
  });
  SandboxAccess access = AccessFor(options.film.module, {options.output});
  for (const std::string& picture : pictures) {
    const InterruptsEndAtOnce whileItReads;
    AddSources(picture, each, access);
  }
  EnterSandbox(access);
  ForEachPhoto(pictures, [&](const std::string& picture) {
    each.views.turn = static_cast<int32_t>(show.plans.size());
    show.plans.push_back(ChangedPlan(picture, each));
  });
  const RenderPlan& first = show.plans.front();
  show.each = first.frames;
  show.fade = FadeFor(options, first.format.rate, show.each);
  show.request = {options.output, first.format,
                  SlideshowFrames(show.plans.size(), show.each, show.fade), options.film.codec,
                  options.plan.audio};
  return show;
}

/// Throws what can be known to go wrong before any work, and leaves the show no more workers
/// than may have its pictures in memory at a time.
void Check(const SlideshowOptions& options, const std::vector<std::string>& pictures,
           Slideshow& show) {
  // Most pictures are their plans' photos.
  std::set<std::string> sources(pictures.begin(), pictures.end());
  sources.insert({options.input, show.request.audio});
  for (const RenderPlan& plan : show.plans) sources.insert({plan.photo, plan.over});
  CheckFilm(*show.kind, show.request, {sources.begin(), sources.end()});
  ForEachPhoto(show.plans, [&](const RenderPlan& plan) {
    const Photo photo = CheckPhoto(plan.photo);
    show.workers = WorkersFor(photo, show.workers);
    if (show.workers < 2 && show.plans.size() > 1) {
      throw Error(plan.photo +
                  ": is too large for a slideshow, which has two pictures in memory at "
                  "a time; the limit for both is " +
                  std::to_string(PictureMemory() >> 20) + " MiB");
    }
    const FilmFormat &format = plan.format, &film = show.request.format;
    if (format.size != film.size || format.rate != film.rate || format.fields != film.fields ||
        format.DisplayAspect() != film.DisplayAspect() || plan.frames != show.each) {
      throw UsageError(
          plan.photo +
          ": would be another kind of film than the first, by its project or the "
          "first's; say --size, --fps and --fields for all, and give projects one displayAspect");
    }
  });
}

/// Says which projects have sound that the film will not have.
void TellOfLostSound(const SlideshowOptions& options, const std::vector<std::string>& pictures,
                     const Slideshow& show) {
  if (!options.plan.audio.empty() || !IsContainer(show.kind->name)) return;
  std::set<std::string> projects;
  for (size_t i = 0; i < pictures.size(); ++i) {
    if (!show.plans[i].audio.empty()) projects.insert(pictures[i]);
  }
  if (projects.empty()) return;
  const size_t others = projects.size() - 1;
  const std::string whose =
      others == 0   ? ": its sound is"
      : others == 1 ? " and another project: their sound is"
                    : " and " + std::to_string(others) + " other projects: their sound is";
  Warn(*projects.begin() + whose + " left out; give the show its sound with --audio");
}

void Run(const SlideshowOptions& options) {
  ApplyReporting(options.film);
  // A list may come through a pipe, which gives it once.
  const std::vector<std::string> pictures = PicturesOf(options.input);
  Slideshow show = ShowFor(options, pictures);
  Check(options, pictures, show);
  TellOfLostSound(options, pictures, show);
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
  const CLI::Option* fade =
      command
          ->add_option("--fade", options->fade,
                       std::string("Seconds of a cross-fade, 0 for none [") + kUsualFade +
                           ", or half of --each where that is less]")
          ->group(kFilm)
          ->type_name("TIME");
  DeclarePlan(*command, options->plan);
  CLI::Option* move = command->get_option("--move");
  move->description(move->get_description() +
                    "; or mixed, which alternates in, out and pans from picture to picture");
  for (const char* replaced : {"--seconds", "--frames", "--over"}) {
    // Not every build has all of them.
    if (CLI::Option* option = command->get_option_no_throw(replaced); option != nullptr) {
      command->remove_option(option);
    }
  }
  command->final_callback([options, fade] {
    options->fadeGiven = fade->count() > 0;
    Run(*options);
  });
  return command;
}

}  // namespace kelto::host
