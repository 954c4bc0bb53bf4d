#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/commands/film_options.h"
#include "host/commands/film_report.h"
#include "host/commands/line_options.h"
#include "host/commands/option_text.h"
#include "host/commands/picture_options.h"
#include "host/commands/plan_options.h"
#include "host/commands/sandbox_option.h"
#include "host/effect/module_file.h"
#include "host/files/output_file.h"
#include "host/film/codecs.h"
#include "host/jobs/film_job.h"
#include "host/jobs/fitted_times.h"
#include "host/jobs/picture_list.h"
#include "host/jobs/picture_memory.h"
#include "host/jobs/slideshow.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/sources/media.h"
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
/// A dip, which goes twice as far, is no quicker.
constexpr const char* kUsualDip = "2";

/// The options as they were typed; empty where nothing was.
struct SlideshowOptions {
  std::vector<std::string> inputs;
  std::string output, order, fadeKind;
  std::string each = kUsualEach, fade = kUsualFade;
  bool fadeGiven = false;
  FilmOptions film;
  PlanOptions plan;
};

/// A picture of the show, and how long it is seen, as text.
struct ShowPicture {
  ListedPicture listed;
  PictureOptions options;
  std::string each, fade;  ///< the line's own or the command line's
  bool fadeGiven = false;
};

/// Reads --fade-kind; what goes without saying of --fade depends on it.
FadeKind ApplyFadeKind(SlideshowOptions& options) {
  if (options.fadeKind.empty()) return FadeKind::kCross;
  return ReadOption("--fade-kind", options.fadeKind, [&](const std::string& kind) {
    if (kind == "cross") return FadeKind::kCross;
    if (kind != "dip" && kind != "none") throw UsageError("choose one of cross, dip, none");
    if (kind == "none" && options.fadeGiven && ParseNumber(options.fade) != 0.0) {
      throw UsageError("--fade " + options.fade + " says otherwise; give one of them");
    }
    if (!options.fadeGiven) options.fade = kind == "dip" ? kUsualDip : "0";
    return kind == "dip" ? FadeKind::kDip : FadeKind::kCross;
  });
}

/// Whole frames of a fade; none for 0.
int32_t ParseFade(const std::string& text, FrameRate rate) {
  return ParseNumber(text) == 0.0 ? 0 : FramesOf(ParseSeconds(text), rate);
}

/// Whole frames of the fade from `picture` to the next one, of as many frames as `frames` says.
int32_t FadeFor(const ShowPicture& picture, const ShowPicture& next,
                std::pair<int32_t, int32_t> frames, FrameRate rate) {
  const int32_t fade = ReadOption("--fade", picture.fade,
                                  [&](const std::string& text) { return ParseFade(text, rate); });
  const auto [here, there] = frames;
  const ShowPicture& shorter = there < here ? next : picture;
  const double longest = ParseSeconds(shorter.each) / 2;
  // Half of a photograph's time may end within a frame: rounded up, two of it would not fit.
  const bool fits = ParseNumber(picture.fade).value_or(0.0) <= longest;
  const int32_t least = std::min(here, there);
  if (fits || !picture.fadeGiven) return std::min(fade, least / 2);
  if (2 * int64_t{fade} <= least) return fade;
  throw UsageError("--fade " + picture.fade + ": two fades do not fit into --each " + shorter.each +
                   "; --fade " + NumberText(longest) + " is the longest");
}

std::vector<ShowPicture> PicturesFor(const SlideshowOptions& options,
                                     const std::vector<std::string>& words) {
  const PictureOptions common{options.plan, words};
  std::vector<ShowPicture> pictures;
  // A list may come through a pipe, which gives it once.
  for (ListedPicture& listed : PicturesOf(options.inputs, OrderAsked(options.order))) {
    ShowPicture picture{std::move(listed), {}, options.each, options.fade, options.fadeGiven};
    picture.options = ReadLineOptions(picture.listed, common, LineUse::kShow);
    if (!picture.options.each.empty()) picture.each = picture.options.each;
    if (!picture.options.fade.empty()) {
      picture.fade = picture.options.fade;
      picture.fadeGiven = true;
    }
    PlanOptions& plan = picture.options.plan;
    plan.seconds = AtPlaceOf(picture.listed, [&] {
      return ReadOption("--each", picture.each, [](const std::string& text) {
        ParseSeconds(text);  // so that an error names this option
        return text;
      });
    });
    pictures.push_back(std::move(picture));
  }
  return pictures;
}

/// Does `work` for a picture. One that cannot be read is left out, with a message: false then.
bool Succeeds(const std::string& picture, const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const UsageError&) {
    throw;
  } catch (const Error& error) {
    if (InterruptSignal() != 0) throw;
    const std::string text = error.what();
    const std::string named = text.starts_with(picture) ? text : picture + ": " + text;
    if (IsStrict()) throw Error(named);
    PrintMessage(named + "; it is left out");
    return false;
  }
}

/// Leaves out the pictures that `work` fails for. Throws Error where none remains.
void KeepThose(std::vector<ShowPicture>& pictures,
               const std::function<void(const ShowPicture&)>& work) {
  std::erase_if(pictures, [&](const ShowPicture& picture) {
    return !Succeeds(picture.listed.path, [&] { work(picture); });
  });
  if (pictures.empty()) throw Error("none of the pictures can be shown");
}

/// Sets how long each picture is seen so that the film is as long as its sound.
void FitToSound(const std::string& audio, std::vector<ShowPicture>& pictures, Slideshow& show) {
  if (audio.empty()) throw UsageError("--fit-audio: there is no sound; name it with --audio");
  const FrameRate rate = show.plans.front().format.rate;
  std::vector<std::optional<int32_t>> given;
  std::vector<int32_t> fades;
  for (size_t i = 0; i < pictures.size(); ++i) {
    const bool own = !pictures[i].options.each.empty();
    given.push_back(own ? std::optional(show.plans[i].frames) : std::nullopt);
    fades.push_back(ParseFade(pictures[i].fade, rate));
  }
  const int32_t total = FramesOf(LookAtSound(audio), rate);
  std::vector<int32_t> times;
  try {
    times = FittedTimes(total, given, fades);
  } catch (const UsageError& error) {
    throw UsageError(std::string("--fit-audio: ") + error.what());
  }
  for (size_t i = 0; i < pictures.size(); ++i) {
    show.plans[i].frames = times[i];
    if (!given[i]) pictures[i].each = FixedText(times[i] / rate.PerSecond(), 2);
  }
}

Slideshow ShowFor(const SlideshowOptions& options, std::vector<ShowPicture>& pictures) {
  if (options.output.empty()) throw UsageError("-o is empty; name the film");
  // What is quickly found wrong goes before the looking.
  Slideshow show;
  show.kind = &KindFor(options.output, options.film.format);
  // One for each of two pictures at the least.
  show.workers = std::max(2, JobsAsked(options.film, CoreCount()));
  show.module = FindModule(options.film.module);
  SandboxAccess access = AccessFor(options.film.module, {options.output});
  KeepThose(pictures, [&](const ShowPicture& picture) {
    const InterruptsEndAtOnce whileItReads;
    AddSources(picture.listed.path, picture.options.plan, access);
  });
  EnterSandbox(access);
  Progress progress("photo", static_cast<int64_t>(pictures.size()));
  int64_t looked = 0;
  KeepThose(pictures, [&](const ShowPicture& picture) {
    const InterruptsEndAtOnce whileItLooks;
    progress.Show(looked++);
    PlanOptions asked = picture.options.plan;
    asked.fitAudio = false;  // of the show, not of each picture
    asked.views.turn = static_cast<int32_t>(show.plans.size());
    RenderPlan plan =
        AtPlaceOf(picture.listed, [&] { return ChangedPlan(picture.listed.path, asked); });
    const Photo photo = CheckPhoto(plan.photo);
    show.workers = WorkersFor(photo, show.workers);
    if (show.workers < 2 && pictures.size() > 1) {
      throw Error(plan.photo +
                  ": is too large for a slideshow, which has two pictures in memory at "
                  "a time; the limit for both is " +
                  std::to_string(PictureMemory() >> 20) + " MiB");
    }
    show.plans.push_back(std::move(plan));
  });
  if (options.plan.fitAudio) FitToSound(options.plan.audio, pictures, show);
  const RenderPlan& first = show.plans.front();
  for (size_t i = 0; i + 1 < pictures.size(); ++i) {
    show.fades.push_back(AtPlaceOf(pictures[i].listed, [&] {
      return FadeFor(pictures[i], pictures[i + 1], {show.plans[i].frames, show.plans[i + 1].frames},
                     first.format.rate);
    }));
  }
  show.request.output = options.output;
  show.request.format = first.format;
  show.request.frames = SlideshowFrames(show);
  show.request.audio = options.plan.audio;
  ApplyToRequest(options.film, show.request);
  show.ends = EndsAsked(options.film, show.request.format, show.request.frames);
  return show;
}

/// Throws what can be known to go wrong before any work.
void Check(const SlideshowOptions& options, const std::vector<ShowPicture>& pictures,
           const Slideshow& show) {
  // Most pictures are their plans' photos.
  std::set<std::string> sources(options.inputs.begin(), options.inputs.end());
  for (const ShowPicture& picture : pictures) sources.insert(picture.listed.path);
  sources.insert(show.request.audio);
  for (const RenderPlan& plan : show.plans) sources.insert({plan.photo, plan.over});
  CheckFilm(*show.kind, show.request, {sources.begin(), sources.end()});
  for (const RenderPlan& plan : show.plans) {
    const FilmFormat &format = plan.format, &film = show.request.format;
    if (format.size != film.size || format.rate != film.rate || format.fields != film.fields ||
        format.DisplayAspect() != film.DisplayAspect()) {
      throw UsageError(
          plan.photo +
          ": would be another kind of film than the first, by its project or the "
          "first's; say --size, --fps and --fields for all, and give projects one displayAspect");
    }
  }
}

/// Says which projects have sound that the film will not have.
void TellOfLostSound(const SlideshowOptions& options, const std::vector<ShowPicture>& pictures,
                     const Slideshow& show) {
  if (!options.plan.audio.empty() || !IsContainer(show.kind->name)) return;
  std::set<std::string> projects;
  for (size_t i = 0; i < pictures.size(); ++i) {
    if (!show.plans[i].audio.empty()) projects.insert(pictures[i].listed.path);
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
  SlideshowOptions options = given;
  const FadeKind fadeKind = ApplyFadeKind(options);
  std::vector<ShowPicture> pictures = PicturesFor(options, WordsGiven(command));
  Slideshow show = ShowFor(options, pictures);
  show.fadeKind = fadeKind;
  Check(options, pictures, show);
  TellOfLostSound(options, pictures, show);
  const FilmClock clock;
  const bool events = CurrentReporting() == Reporting::kJson;
  if (events) {
    PrintEvent("start", {{"output", options.output}, {"frames", int64_t{show.request.frames}}});
  }
  {
    Progress progress("frame", show.request.frames);
    MakeSlideshow(show, [&](int32_t done) { progress.Show(done); });
  }
  if (events) PrintEvent("done", {{"output", options.output}});
  clock.Report(*show.kind, show.request);
}

}  // namespace

CLI::App* AddSlideshow(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("slideshow", "Make one film of many photographs, with cross-fades");
  const auto options = std::make_shared<SlideshowOptions>();
  DeclarePictures(*command, options->inputs, options->order);
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
                       std::string("Seconds of a fade from one to the next, 0 for none [") +
                           kUsualFade + ", of a dip " + kUsualDip +
                           ", or half of --each where that is less]")
          ->group(kFilm)
          ->type_name("TIME");
  command
      ->add_option("--fade-kind", options->fadeKind,
                   "How one photograph becomes the next: cross, one through the other; dip, "
                   "through the colour of --fade-colour; none, a cut [cross]")
      ->group(kFilm)
      ->type_name("WORD");
  DeclarePlan(*command, options->plan);
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
  command->final_callback([options, fade, command] {
    options->fadeGiven = fade->count() > 0;
    Run(*options, *command);
  });
  return command;
}

}  // namespace kelto::host
