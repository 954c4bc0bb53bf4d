#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "host/base/error.h"
#include "host/commands/captions.h"
#include "host/commands/film_options.h"
#include "host/commands/film_report.h"
#include "host/commands/option_text.h"
#include "host/commands/picture_options.h"
#include "host/commands/preview_option.h"
#include "host/commands/sandbox_option.h"
#include "host/commands/show_plans.h"
#include "host/effect/module_file.h"
#include "host/files/output_file.h"
#include "host/film/codecs.h"
#include "host/film/coded_films.h"
#include "host/film/depth.h"
#include "host/jobs/beats.h"
#include "host/jobs/deep_choice.h"
#include "host/jobs/film_job.h"
#include "host/jobs/picture_memory.h"
#include "host/jobs/slideshow.h"
#include "host/lettering/lettering.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/options/usual_times.h"
#include "host/project/show_project.h"
#include "host/terminal/events.h"
#include "host/terminal/progress.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

/// The options as they were typed; empty where nothing was.
struct SlideshowOptions {
  ShowOptions show;
  std::string output, project, fadeKind, title;
  bool force = false, beats = false;
  FilmOptions film;
  LiveUse preview = LiveUse::kKnown;
};

/// A dip, which goes twice as far as a cross-fade, is no quicker.
constexpr const char* kUsualDip = "2";

/// Reads --fade-kind; what goes without saying of --fade depends on it.
FadeKind ApplyFadeKind(SlideshowOptions& options) {
  if (options.fadeKind.empty()) return FadeKind::kCross;
  ShowOptions& show = options.show;
  return ReadOption("--fade-kind", options.fadeKind, [&](const std::string& kind) {
    if (kind == "cross") return FadeKind::kCross;
    if (kind != "dip" && kind != "none") throw UsageError("choose one of cross, dip, none");
    if (kind == "none" && show.fadeGiven && ParseNumber(show.fade) != 0.0) {
      throw UsageError("--fade " + show.fade + " says otherwise; give one of them");
    }
    if (kind == "none") show.fadeGiven = true;  // also in place of a project's fades
    if (kind == "none" || !show.fadeGiven) show.fade = kind == "dip" ? kUsualDip : "0";
    return kind == "dip" ? FadeKind::kDip : FadeKind::kCross;
  });
}

Beats BeatsFor(const std::string& audio) {
  if (audio.empty()) throw UsageError("--beats: there is no sound; name it with --audio");
  return BeatsOf(audio);
}

void CutOnBeats(const Beats& beats, int32_t begin, ShowPlans& plans) {
  std::vector<int32_t> times;
  for (const RenderPlan& plan : plans.plans) times.push_back(plan.frames);
  const double rate = plans.plans.front().format.rate.PerSecond();
  times = TimesOnBeats(times, plans.fades, begin, beats, rate);
  for (size_t i = 0; i < times.size(); ++i) plans.plans[i].frames = times[i];
}

Slideshow ShowFor(const SlideshowOptions& options, ShowPictures& pictures, ShowPlans& plans) {
  if (options.output.empty()) throw UsageError("-o is empty; name the film");
  // What is quickly found wrong goes before the looking.
  Slideshow show;
  show.kind = &KindFor(options.output, options.film.format);
  // One for each of two pictures at the least.
  show.workers = std::max(2, JobsAsked(options.film, CoreCount()));
  show.module = FindModule(options.film.module);
  const int32_t depth = DepthAskedBy(options.film);
  ApplyToRequest(options.film, show.request);
  CheckDepth(*show.kind, {}, depth, show.request);
  const std::string& audio =
      options.show.plan.audio.empty() ? pictures.audio : options.show.plan.audio;
  // Before the sandbox, which starts no programs.
  const Beats beats = options.beats ? BeatsFor(audio) : Beats{};
  SandboxAccess access = AccessFor(options.film.module, {options.output, options.project});
  AddSourcesOf(pictures, access);
  AddDevices(options.film, access);
  EnterSandbox(access);
  const auto makeRoom = [&](const RenderPlan&, const Photo& photo) {
    show.workers = WorkersFor(photo, show.workers);
    if (show.workers >= 2 || pictures.pictures.size() < 2) return;
    throw Error(photo.given +
                ": is too large for a slideshow, which has two pictures in memory at a time; the "
                "limit for both is " +
                std::to_string(PictureMemory() >> 20) + " MiB");
  };
  plans = PlansFor(pictures, JobsAsked(options.film, CoreCount()), makeRoom);
  CheckDepth(*show.kind, plans.plans, depth, show.request);
  ChooseDepth(*show.kind, plans.plans, plans.photos, depth, show.request);
  if (show.request.deep) {
    for (Photo photo : plans.photos) {
      photo.memory = photo.deepMemory;
      makeRoom({}, photo);
    }
  }
  if (!options.title.empty()) {
    show.title.text = ReadOption("--title", options.title, TitleText);
    show.title.frames = FramesOf(kTitleSeconds, plans.plans.front().format.rate);
  }
  if (options.show.plan.fitAudio) FitToSound(audio, show.title.frames, pictures, plans);
  SetFades(pictures, plans);
  show.title.fade = TitleFadeFor(show.title.frames, pictures, plans);
  if (options.beats) CutOnBeats(beats, show.title.frames - show.title.fade, plans);
  if (options.show.plan.fitAudio || options.beats) KeepCalm(plans);
  show.plans = plans.plans;
  show.fades = plans.fades;
  PlaceCaptions(show.plans, show.fades, show.title.fade);
  show.request.output = options.output;
  show.request.format = show.plans.front().format;
  show.request.frames = SlideshowFrames(show);
  // A project's sound is silent in films that cannot have any.
  if (!options.show.plan.audio.empty() || IsContainer(show.kind->name)) {
    show.request.audio = audio;
  }
  show.ends = EndsAsked(options.film, show.request);
  return show;
}

/// Throws what can be known to go wrong before any work.
void Check(const SlideshowOptions& options, const ShowPictures& pictures, const Slideshow& show) {
  // Most pictures are their plans' photos.
  std::set<std::string> sources(options.show.inputs.begin(), options.show.inputs.end());
  for (const PictureInShow& picture : pictures.pictures) sources.insert(picture.listed.path);
  sources.insert(show.request.audio);
  for (const RenderPlan& plan : show.plans) sources.insert({plan.photo, plan.over});
  CheckFilm(*show.kind, show.request, {sources.begin(), sources.end()});
  CheckFormats(show.plans);
  if (options.project.empty()) return;
  if (options.output == kStandardOutput && options.project == kStandardOutput) {
    throw UsageError("-o and --save-project cannot both be -");
  }
  if (WouldReplace(*show.kind, show.request, options.project)) {
    throw NameUsedTwice(options.output);
  }
  if (!options.force) CheckIsNew(options.project);
}

/// Says which projects have sound that the film will not have.
void TellOfLostSound(const ShowPictures& pictures, const Slideshow& show) {
  if (!show.request.audio.empty() || !IsContainer(show.kind->name)) return;
  std::set<std::string> projects;
  for (size_t i = 0; i < pictures.pictures.size(); ++i) {
    if (!show.plans[i].audio.empty()) projects.insert(pictures.pictures[i].listed.path);
  }
  if (projects.empty()) return;
  const size_t others = projects.size() - 1;
  const std::string whose =
      others == 0   ? ": its sound is"
      : others == 1 ? " and another project: their sound is"
                    : " and " + std::to_string(others) + " other projects: their sound is";
  Warn(*projects.begin() + whose + " left out; give the show its sound with --audio");
}

void Run(const SlideshowOptions& given, const CLI::App& command) {
  ApplyReporting(given.film);
  LivePicture preview(given.preview);
  SlideshowOptions options = given;
  FadeKind fadeKind = ApplyFadeKind(options);
  ShowPictures pictures = PicturesFor(options.show, WordsGiven(command));
  ShowPlans plans;
  if (options.title.empty()) options.title = pictures.title;
  if (options.fadeKind.empty() && pictures.fadeKind == "dip") fadeKind = FadeKind::kDip;
  Slideshow show = ShowFor(options, pictures, plans);
  show.fadeKind = fadeKind;
  Check(options, pictures, show);
  TellOfLostSound(pictures, show);
  if (!options.project.empty()) {
    const std::string& sound =
        options.show.plan.audio.empty() ? pictures.audio : options.show.plan.audio;
    ShowProject project = ProjectOf(plans, sound);
    project.title = show.title.text;
    if (fadeKind == FadeKind::kDip) project.fadeKind = "dip";
    WriteShow(options.project, project);
  }
  const FilmClock clock;
  const bool events = CurrentReporting() == Reporting::kJson;
  if (events) {
    PrintEvent("start", {{"output", options.output}, {"frames", int64_t{show.request.frames}}});
  }
  {
    Progress progress("frame", show.request.frames);
    const PixelLayout layout = FrameLayout(*show.kind, show.request);
    const double aspect = show.request.format.DisplayAspect();
    MakeSlideshow(show, [&](int32_t done, const FrameView& frame) {
      preview.Show(frame, layout, aspect);
      progress.Show(done);
    });
  }
  if (events) PrintEvent("done", {{"output", options.output}});
  clock.Report(*show.kind, show.request);
}

}  // namespace

CLI::App* AddSlideshow(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("slideshow", "Make one film of many photographs, with cross-fades");
  const auto options = std::make_shared<SlideshowOptions>();
  DeclarePictures(*command, options->show.inputs, options->show.order);
  DeclareOutput(*command, options->output);
  DeclareFilm(*command, options->film,
              "Processes that render, at least two, each with a photograph in memory; the film is "
              "the same [one for each core]");
  DeclarePreview(*command, options->preview);
  DeclareDepth(*command, options->film);
  command
      ->add_option("--save-project", options->project,
                   "Write what the show shows, with all options, into this project file, .json")
      ->group("Files")
      ->type_name("FILE")
      ->check(FileText);
  command->add_flag("--force", options->force, "Replace the project that --save-project names")
      ->group("Files");
  DeclareTimes(*command, "Film", options->show);
  command->get_option("--fade")->description(
      std::string("Seconds of a fade from one to the next, 0 for none [1, of a dip ") + kUsualDip +
      ", or half of --each where that is less]");
  command
      ->add_option("--fade-kind", options->fadeKind,
                   "How one photograph becomes the next: cross, one through the other; dip, "
                   "through the colour of --fade-colour; none, a cut [cross]")
      ->group("Film")
      ->type_name("WORD");
  if (IsContainer(UsualFilmKind())) {
    command
        ->add_flag(
            "--beats", options->beats,
            "Move each cut to the nearest beat of the sound, as the program aubiotrack finds "
            "them")
        ->group("Film");
  }
  if (CanDrawLetters()) {
    command
        ->add_option("--title", options->title,
                     "Text on a card at the beginning, seen for four seconds, on the colour of "
                     "--fade-colour; \\n begins a line")
        ->group("Film")
        ->type_name("TEXT");
  }
  DeclarePlan(*command, options->show.plan);
  CLI::Option* move = command->get_option("--move");
  move->description(move->get_description() +
                    "; or mixed, which alternates in, out and pans from picture to picture");
  for (const char* replaced : {"--seconds", "--frames", "--over", "--loop"}) {
    // Not every build has all of them.
    if (CLI::Option* option = command->get_option_no_throw(replaced); option != nullptr) {
      command->remove_option(option);
    }
  }
  if (CLI::Option* fit = command->get_option_no_throw("--fit-audio"); fit != nullptr) {
    fit->description(
        "Make the film as long as its sound: photographs share the time evenly, but for "
        "those whose line in a list has an --each");
    fit->excludes("--each");
  }
  command->final_callback([options, command] { Run(*options, *command); });
  return command;
}

}  // namespace kelto::host
