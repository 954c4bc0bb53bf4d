#include "host/commands/show_plans.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/commands/option_text.h"
#include "host/commands/picture_options.h"
#include "host/files/input_file.h"
#include "host/jobs/fitted_times.h"
#include "host/jobs/picture_list.h"
#include "host/jobs/picture_memory.h"
#include "host/options/fades.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/processes/read_ahead.h"
#include "host/processes/task_processes.h"
#include "host/project/project_file.h"
#include "host/sources/media.h"
#include "host/sources/photos.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/progress.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

constexpr const char* kUsualEach = "5";
constexpr const char* kUsualFade = "1";

/// Whole frames of a fade; none for 0.
int32_t ParseFade(const std::string& text, FrameRate rate) {
  return FadeFrames(ParseNumber(text) == 0.0 ? 0.0 : ParseSeconds(text), rate);
}

/// Whole frames of the fade from `picture` to the next one, of as many frames as `frames` says.
int32_t FadeFor(const PictureInShow& picture, const PictureInShow& next,
                std::pair<int32_t, int32_t> frames, FrameRate rate) {
  const int32_t fade = ReadOption("--fade", picture.fade,
                                  [&](const std::string& text) { return ParseFade(text, rate); });
  const auto [here, there] = frames;
  const PictureInShow& shorter = there < here ? next : picture;
  const double longest = ParseSeconds(shorter.each) / 2;
  // Half of a photograph's time may end within a frame: rounded up, two of it would not fit.
  const bool fits = ParseNumber(picture.fade).value_or(0.0) <= longest;
  const int32_t most = LongestFade(here, there);
  if (fits || !picture.fadeGiven || fade <= most) return std::min(fade, most);
  throw UsageError("--fade " + picture.fade + ": two fades do not fit into --each " + shorter.each +
                   "; --fade " + NumberText(longest) + " is the longest");
}

/// Its time as it is seen, in its plan's options, so that an error names the option.
void SetSeconds(PictureInShow& picture) {
  picture.options.plan.seconds = AtPlaceOf(picture.listed, [&] {
    return ReadOption("--each", picture.each, [](const std::string& text) {
      ParseSeconds(text);
      return text;
    });
  });
}

/// The pictures of a show's project; options that were given overrule what it says.
ShowPictures PicturesOfProject(const std::string& path, ShowProject project,
                               const ShowOptions& options, const PictureOptions& common) {
  ShowPictures pictures;
  pictures.audio = project.audio;
  pictures.fadeKind = project.fadeKind;
  pictures.title = project.title;
  for (size_t i = 0; i < project.pictures.size(); ++i) {
    ShowPicture& said = project.pictures[i];
    PictureInShow picture{{said.plan.photo}, common, options.each, options.fade, options.fadeGiven};
    if (said.each && !options.eachGiven) picture.each = NumberText(*said.each);
    if (said.fade && !options.fadeGiven) {
      picture.fade = NumberText(*said.fade);
      picture.fadeGiven = true;
    }
    SetSeconds(picture);
    ViewOptions& views = picture.options.plan.views;
    views.movesByItself = !said.hasViews;
    const bool viewsGiven = !views.from.empty() || !views.to.empty() || !views.tour.empty();
    const auto fill = [](std::string& option, const std::string& word) {
      if (option.empty()) option = word;
    };
    if (!viewsGiven) {
      // What goes with a move of the project's does not go with one of the command line's.
      if (views.move.empty()) fill(views.amount, said.amount);
      fill(views.move, said.move);
      fill(views.fit, said.fit);
    }
    fill(views.motion, said.motion);
    picture.place = path + ": pictures[" + std::to_string(i) + "].";
    picture.plan = std::move(said.plan);
    pictures.pictures.push_back(std::move(picture));
  }
  return pictures;
}

RenderPlan PlanOfPicture(const PictureInShow& picture, const PlanOptions& options,
                         std::optional<AskedMove>* calm) {
  return picture.plan ? ChangedPlan(*picture.plan, picture.place, options, calm)
                      : ChangedPlan(picture.listed.path, options, calm);
}

/// Does `work` for a picture. One that cannot be read is left out, with a message: false then.
bool Succeeds(const PictureInShow& picture, const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const UsageError&) {
    throw;
  } catch (const Error& error) {
    if (InterruptSignal() != 0) throw;
    const std::string text = error.what();
    const bool isNamed =
        text.starts_with(picture.listed.path) || (picture.plan && text.starts_with(picture.place));
    const std::string named = isNamed ? text : picture.listed.path + ": " + text;
    if (IsStrict()) throw Error(named);
    PrintMessage(named + "; it is left out");
    return false;
  }
}

/// Fades that nobody asked for take a quarter of a picture's share of the show at the most: many
/// pictures to a short piece of music would be seen in nothing but fades.
void ShortenFades(double seconds, std::vector<PictureInShow>& pictures) {
  const double longest = seconds / static_cast<double>(pictures.size()) / 4;
  for (PictureInShow& picture : pictures) {
    if (picture.fadeGiven || ParseSeconds(picture.fade) <= longest) continue;
    picture.fade = FixedText(std::max(longest, 0.01), 2);
  }
}

}  // namespace

ShowPictures PicturesFor(const ShowOptions& options, const std::vector<std::string>& words) {
  const PictureOptions common{options.plan, words};
  const std::string& path = options.inputs[0];
  if (options.inputs.size() == 1 && IsProjectName(path) && IsFile(path)) {
    const InterruptsEndAtOnce whileItReads;
    if (std::optional<ShowProject> show = ReadShow(path)) {
      return PicturesOfProject(path, std::move(*show), options, common);
    }
  }
  ShowPictures show;
  // A list may come through a pipe, which gives it once.
  for (ListedPicture& listed : PicturesOf(options.inputs, OrderAsked(options.order))) {
    PictureInShow picture{std::move(listed), {}, options.each, options.fade, options.fadeGiven};
    picture.options = ReadLineOptions(picture.listed, common, LineUse::kShow);
    if (!picture.options.each.empty()) picture.each = picture.options.each;
    if (!picture.options.fade.empty()) {
      picture.fade = picture.options.fade;
      picture.fadeGiven = true;
    }
    SetSeconds(picture);
    show.pictures.push_back(std::move(picture));
  }
  return show;
}

void KeepThose(std::vector<PictureInShow>& pictures,
               const std::function<void(const PictureInShow&)>& work) {
  std::erase_if(pictures, [&](const PictureInShow& picture) {
    return !Succeeds(picture, [&] { work(picture); });
  });
  if (pictures.empty()) throw Error("none of the pictures can be shown");
}

void AddSourcesOf(ShowPictures& show, SandboxAccess& access) {
  KeepThose(show.pictures, [&](const PictureInShow& picture) {
    const InterruptsEndAtOnce whileItReads;
    if (picture.plan) {
      AddSources(*picture.plan, picture.options.plan, access);
    } else {
      AddSources(picture.listed.path, picture.options.plan, access);
    }
  });
  access.reads.push_back(show.audio);
}

namespace {

/// A picture's plan at its place in the show.
RenderPlan PlanAt(const PictureInShow& picture, size_t turn,
                  std::optional<AskedMove>* calm = nullptr) {
  PlanOptions asked = picture.options.plan;
  asked.fitAudio = false;  // of the show, not of each picture
  asked.views.turn = static_cast<int32_t>(turn);
  return AtPlaceOf(picture.listed, [&] { return PlanOfPicture(picture, asked, calm); });
}

/// What looking at each picture will find, as AnswersDuring has it, found by processes side by
/// side. Nothing of a picture for which that fails: it fails again, and is reported, when its turn
/// comes.
std::vector<std::string> LookAhead(const std::vector<PictureInShow>& pictures, int32_t workers,
                                   Progress& progress) {
  std::vector<std::string> answers(pictures.size());
  int64_t count = 0;
  TaskList tasks{pictures.size(), PictureMemory(), {}, {}, {}};
  tasks.work = [&](size_t index, const TaskOwner& owner) {
    const PictureInShow& picture = pictures[index];
    const RenderPlan plan = picture.plan ? *picture.plan : PlanOf(picture.listed.path);
    owner.await(LookAtPhoto(PhotoName(plan)).memory);
    answers[index] = AnswersDuring([&] { CheckWholePhoto(PhotoName(PlanAt(picture, index))); });
  };
  tasks.ended = [&](size_t, const std::string&) { progress.Show(++count); };
  tasks.printed = [](size_t, const std::string&) {};
  tasks.result = [&](size_t index) { return answers[index]; };
  tasks.taken = [&](size_t index, const std::string& result) { answers[index] = result; };
  RunTasks(tasks, workers);
  return answers;
}

/// Whether what was found for a picture at one place in the show holds at another, too.
bool IsSameAnywhere(const PictureInShow& picture) {
  return picture.options.plan.views.move != "mixed";
}

}  // namespace

ShowPlans PlansFor(ShowPictures& show, int32_t workers,
                   const std::function<void(const RenderPlan&, const Photo&)>& looked) {
  std::vector<PictureInShow>& pictures = show.pictures;
  ShowPlans plans;
  Progress progress("photo", static_cast<int64_t>(pictures.size()));
  std::vector<std::string> answers(pictures.size());
  const bool ahead = workers > 1 && pictures.size() > 1;
  if (ahead) answers = LookAhead(pictures, workers, progress);
  size_t next = 0;
  KeepThose(pictures, [&](const PictureInShow& picture) {
    const InterruptsEndAtOnce whileItLooks;
    const size_t index = next++, turn = plans.plans.size();
    if (!ahead) progress.Show(static_cast<int64_t>(index));
    const bool holds = turn == index || IsSameAnywhere(picture);
    WithAnswers(holds ? answers[index] : "", [&] {
      std::optional<AskedMove> move;
      RenderPlan plan = PlanAt(picture, turn, &move);
      Photo photo = CheckWholePhoto(PhotoName(plan));
      looked(plan, photo);
      plans.plans.push_back(std::move(plan));
      plans.photos.push_back(std::move(photo));
      plans.moves.push_back(std::move(move));
    });
  });
  return plans;
}

int32_t TitleFadeFor(int32_t titleFrames, const ShowPictures& show, const ShowPlans& plans) {
  const RenderPlan& first = plans.plans.front();
  return std::min(ParseFade(show.pictures.front().fade, first.format.rate),
                  LongestFade(titleFrames, first.frames));
}

void FitToSound(const std::string& audio, int32_t titleFrames, ShowPictures& show,
                ShowPlans& plans) {
  if (audio.empty()) throw UsageError("--fit-audio: there is no sound; name it with --audio");
  std::vector<PictureInShow>& pictures = show.pictures;
  const FrameRate rate = plans.plans.front().format.rate;
  const int32_t total = FramesOf(LookAtSound(audio), rate);
  ShortenFades(total / rate.PerSecond(), pictures);
  std::vector<std::optional<int32_t>> given;
  std::vector<int32_t> fades;
  for (size_t i = 0; i < pictures.size(); ++i) {
    const bool own = !pictures[i].options.each.empty();
    given.push_back(own ? std::optional(plans.plans[i].frames) : std::nullopt);
    fades.push_back(ParseFade(pictures[i].fade, rate));
  }
  if (titleFrames > 0) {
    given.insert(given.begin(), titleFrames);
    fades.insert(fades.begin(), fades.front());
  }
  std::vector<int32_t> times;
  try {
    times = FittedTimes(total, given, fades);
  } catch (const UsageError& error) {
    throw UsageError(std::string("--fit-audio: ") + error.what());
  }
  if (titleFrames > 0) times.erase(times.begin());
  for (size_t i = 0; i < pictures.size(); ++i) {
    plans.plans[i].frames = times[i];
    if (pictures[i].options.each.empty())
      pictures[i].each = FixedText(times[i] / rate.PerSecond(), 2);
  }
}

void KeepCalm(ShowPlans& plans) {
  for (size_t i = 0; i < plans.plans.size(); ++i) {
    if (plans.moves[i]) SetCalmMove(*plans.moves[i], plans.plans[i]);
  }
}

void SetFades(const ShowPictures& show, ShowPlans& plans) {
  const std::vector<PictureInShow>& pictures = show.pictures;
  for (size_t i = 0; i + 1 < pictures.size(); ++i) {
    plans.fades.push_back(AtPlaceOf(pictures[i].listed, [&] {
      return FadeFor(pictures[i], pictures[i + 1],
                     {plans.plans[i].frames, plans.plans[i + 1].frames},
                     plans.plans.front().format.rate);
    }));
  }
}

void CheckFormats(const std::vector<RenderPlan>& plans) {
  const FilmFormat& film = plans.front().format;
  for (const RenderPlan& plan : plans) {
    const FilmFormat& format = plan.format;
    if (format.size != film.size || format.rate != film.rate || format.fields != film.fields ||
        format.DisplayAspect() != film.DisplayAspect()) {
      throw UsageError(
          plan.photo +
          ": would be another kind of film than the first, by its project or the "
          "first's; say --size, --fps and --fields for all, and give projects one displayAspect");
    }
  }
}

ShowProject ProjectOf(const ShowPlans& show, const std::string& audio) {
  ShowProject project;
  project.audio = audio;
  for (size_t i = 0; i < show.plans.size(); ++i) {
    ShowPicture picture{show.plans[i], true};
    const double rate = picture.plan.format.rate.PerSecond();
    picture.each = picture.plan.frames / rate;
    // The last has none; it says what the one before it says, so that a fade of all is said once.
    if (!show.fades.empty()) picture.fade = show.fades[std::min(i, show.fades.size() - 1)] / rate;
    project.pictures.push_back(std::move(picture));
  }
  return project;
}

void DeclareTimes(CLI::App& command, const std::string& group, ShowOptions& options) {
  command
      .add_option("--each", options.each,
                  std::string("Seconds for which a photograph is seen, fades included [") +
                      kUsualEach + "]")
      ->group(group)
      ->type_name("TIME")
      ->each([&options](const std::string&) { options.eachGiven = true; });
  command
      .add_option("--fade", options.fade,
                  std::string("Seconds of a cross-fade, 0 for none [") + kUsualFade +
                      ", or half of --each where that is less]")
      ->group(group)
      ->type_name("TIME")
      ->each([&options](const std::string&) { options.fadeGiven = true; });
}

}  // namespace kelto::host
