#include "host/commands/plan_options.h"

#include <CLI/CLI.hpp>
#include <utility>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/commands/captions.h"
#include "host/commands/option_text.h"
#include "host/commands/sandbox_option.h"
#include "host/film/coded_films.h"
#include "host/lettering/lettering.h"
#include "host/options/choices.h"
#include "host/options/colour.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/options/size.h"
#include "host/plan/default_plan.h"
#include "host/project/display_aspect.h"
#include "host/project/project_file.h"
#include "host/sources/media.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

/// An empty text would pass for an option that was not given.
std::string GivenText(const std::string& text) { return text.empty() ? "nothing is given" : ""; }

FieldOrder ParseFields(const std::string& text) {
  if (text == "top") return FieldOrder::kTopFirst;
  if (text == "bottom") return FieldOrder::kBottomFirst;
  if (text == "progressive") return FieldOrder::kProgressive;
  throw UsageError("choose one of top, bottom, progressive");
}

int32_t ParsePlayMode(const std::string& text) {
  const auto mode = ParseWhole(text);
  if (!mode || *mode < 0 || *mode > 255) {
    throw UsageError("a play mode is an integer from 0 to 255, such as 0 or 1");
  }
  return static_cast<int32_t>(*mode);
}

int32_t ParseRotation(const std::string& text) {
  const auto degrees = ParseWhole(text);
  if (!degrees || *degrees < 0 || *degrees > 270 || *degrees % 90 != 0) {
    throw UsageError("choose one of 0, 90, 180, 270 degrees");
  }
  return static_cast<int32_t>(*degrees);
}

/// The sound, and the video that the film lies over and takes rate and length from.
void ApplyMedia(const PlanOptions& options, RenderPlan& plan) {
  if (!options.audio.empty()) plan.audio = options.audio;
  if (options.over.empty()) return;
  if (!options.background.empty()) {
    throw UsageError("--over and --background both say what is beside the photo; give one of them");
  }
  const VideoInfo video = CheckVideo(options.over);
  // The sound of a video that is replaced goes with it.
  if (options.audio.empty() && plan.audio == plan.over) plan.audio.clear();
  plan.over = options.over;
  plan.format.rate = video.rate;
  plan.frames = video.frames;
  plan.Set(key::kCompositeOver, std::string(entry::kOverVideo));
  if (plan.audio.empty() && video.sound) plan.audio = options.over;
}

void ApplyFilm(const PlanOptions& options, RenderPlan& plan) {
  FilmFormat& format = plan.format;
  if (!options.size.empty()) {
    const bool square = format.sampleAspect == SampleAspect{};
    const std::string shape = DisplayAspectText(format);
    format.size = ReadOption("--size", options.size, ParseSize);
    // A project's film that is not shown in the shape of its pixels keeps the shape it is shown in.
    if (!square) format.sampleAspect = ParseDisplayAspect(shape, format.size);
  }
  if (!options.rate.empty()) {
    const double seconds = plan.frames / format.rate.PerSecond();
    format.rate = ReadOption("--fps", options.rate, ParseRate);
    plan.frames = FramesOf(seconds, format.rate);
  }
  if (!options.frames.empty() && !options.seconds.empty()) {
    throw UsageError("--frames and --seconds both say how long the film is; give one of them");
  }
  if (!options.frames.empty()) plan.frames = ReadOption("--frames", options.frames, ParseFrames);
  if (!options.seconds.empty()) {
    plan.frames = ReadOption("--seconds", options.seconds, [&](const std::string& text) {
      return FramesOf(ParseSeconds(text), format.rate);
    });
  }
  if (options.fitAudio) {
    if (plan.audio.empty())
      throw UsageError("--fit-audio: there is no sound; name it with --audio");
    plan.frames = FramesOf(LookAtSound(plan.audio), format.rate);
  }
  if (!options.fields.empty()) format.fields = ReadOption("--fields", options.fields, ParseFields);
}

bool IsVelocity(const ChoiceList& list) {
  return list.parameter == std::string(key::kInVelocity) ||
         list.parameter == std::string(key::kOutVelocity);
}

/// The word for a velocity that --ease stands for; empty where it says nothing of this list.
std::string EaseWord(const ChoiceList& list, const std::string& ease) {
  if (ease.empty() || !IsVelocity(list)) return "";
  const bool arrives = list.parameter == std::string(key::kInVelocity);
  return ReadOption("--ease", ease, [&](const std::string& word) {
    if (word == "smooth") return "ease";
    if (word == "linear") return "linear";
    if (word == "in") return arrives ? "linear" : "ease";
    if (word == "out") return arrives ? "ease" : "linear";
    throw UsageError("choose one of smooth, linear, in, out");
  });
}

/// Hands each list that an option names to `use`, with the entry.
template <typename Use>
void ForEachEntry(const PlanOptions& options, Use use) {
  for (size_t i = 0; i < options.words.size(); ++i) {
    const ChoiceList& list = ChoiceLists()[i];
    const std::string word =
        options.words[i].empty() ? EaseWord(list, options.ease) : options.words[i];
    if (word.empty()) continue;
    use(list, ReadOption(list.option, word,
                         [&](const std::string& text) { return EntryOf(list, text); }));
  }
}

/// What is seen beside the photo, of which a video, a colour and the photo are one at a time.
void ApplyBeside(const PlanOptions& options, RenderPlan& plan) {
  if (!options.beside.empty()) {
    plan.beside = ReadOption("--beside", options.beside, [](const std::string& word) {
      if (word != "colour" && word != "blur") throw UsageError("choose one of colour, blur");
      return word == "blur" ? Beside::kBlur : Beside::kColour;
    });
    if (plan.beside == Beside::kBlur && (!plan.over.empty() || !options.background.empty())) {
      throw UsageError(std::string("--beside blur and ") +
                       (plan.over.empty() ? "--background" : "--over") +
                       " both say what is beside the photo; give one of them");
    }
  } else if (!options.over.empty() || !options.background.empty()) {
    plan.beside = Beside::kColour;
  }
  if (options.background.empty()) return;
  plan.transparent = options.background == "none";
  const Colour seen =
      plan.transparent ? Colour{} : ReadOption("--background", options.background, ParseColour);
  plan.Set(key::kBackgroundColor, BackgroundFor(seen));
  plan.Set(key::kCompositeOver, std::string(entry::kOverColor));
}

/// All lists but the velocities, which are only looked at: they need the views.
void ApplyLists(const PlanOptions& options, RenderPlan& plan) {
  ForEachEntry(options, [&](const ChoiceList& list, const std::string& entry) {
    if (!IsVelocity(list)) plan.Set(list.parameter, entry);
  });
}

/// A show's picture moves when it comes and while it goes, where no option says otherwise.
void SetShowsVelocities(const PlanOptions& options, RenderPlan& plan) {
  if (plan.motion == MotionLaw::kLinear || !options.views.turn) return;
  for (const char* velocity : {key::kInVelocity, key::kOutVelocity}) {
    plan.SetVelocity(velocity, EntryOf(ListOf(velocity), "linear"));
  }
}

void ApplyVelocities(const PlanOptions& options, RenderPlan& plan) {
  ForEachEntry(options, [&](const ChoiceList& list, const std::string& entry) {
    if (IsVelocity(list)) plan.SetVelocity(list.parameter, entry);
  });
}

/// Declares options of one group, each into a text.
class TextOptions {
 public:
  TextOptions(CLI::App& command, const char* group) : command_(command), group_(group) {}
  CLI::Option* operator()(const char* option, const char* type, std::string& text,
                          const std::string& help) const {
    return command_.add_option(option, text, help)
        ->group(group_)
        ->type_name(type)
        ->check(GivenText);
  }

 private:
  CLI::App& command_;
  const char* group_;
};

}  // namespace

void DeclarePlan(CLI::App& command, PlanOptions& options) {
  const TextOptions declare(command, "Film");
  declare("--size", "WxH", options.size,
          "Frame size in pixels, or one of " + SizeNames() + " [1920x1080]");
  declare("--fps", "RATE", options.rate, "Frames a second: 25, 29.97, 30000/1001 ... [25]");
  declare("--seconds", "TIME", options.seconds, "Length in seconds [5]");
  declare("--frames", "N", options.frames, "Length in frames");
  if (!CodedFilmKinds().empty()) {
    declare("--audio", "FILE", options.audio,
            "Sound for the film: that of this file, from its beginning");
    declare("--over", "FILE", options.over,
            "Lay the photo over this video: its rate, length and sound become the film's unless "
            "other options say otherwise");
    CLI::Option* fit =
        command.add_flag("--fit-audio", options.fitAudio, "Make the film as long as its sound")
            ->group("Film");
    for (const char* length : {"--seconds", "--frames", "--over"}) fit->excludes(length);
  }
  declare("--fields", "ORDER", options.fields,
          "Interlaced, with this field first: top, bottom; or progressive, whole frames "
          "[progressive]");
  // The player has one of its own.
  if (command.get_option_no_throw("--loop") == nullptr) {
    command
        .add_flag("--loop", options.views.loop,
                  "Come back to the beginning, so that the film may be played over and over "
                  "without a seam")
        ->group("Film");
  }
  DeclarePicture(command, options);
  DeclareSandbox(command);
}

void DeclarePicture(CLI::App& command, PlanOptions& options) {
  constexpr const char* kPicture = "Picture";
  options.views.movesByItself = true;
  DeclareViews(command, kPicture, options.views);
  const TextOptions declare(command, kPicture);
  options.words.resize(ChoiceLists().size());
  for (size_t i = 0; i < ChoiceLists().size(); ++i) {
    const ChoiceList& list = ChoiceLists()[i];
    declare(list.option, "WORD", options.words[i],
            std::string(list.help) + ": " + WordsOf(list) + " [" + list.preset + "]");
  }
  CLI::Option* ease = declare(
      "--ease", "WORD", options.ease,
      "Both ends of the move: smooth, which starts and ends softly; linear, at one speed; in, "
      "a soft start; out, a soft end [smooth]");
  ease->excludes("--in")->excludes("--out");
  declare(
      "--background", "COLOUR", options.background,
      "Colour beside the photo and behind it where it is transparent, '#rrggbb'; or none, for a "
      "film that is transparent there [#000000]");
  command
      .add_flag("--linear-light", options.linearLight,
                "Mix light in the filters, not levels: fine detail keeps its brightness when it is "
                "reduced; for films, which are drawn with 16 bits for it")
      ->group(kPicture);
  declare("--beside", "WORD", options.beside,
          "What is seen where the frame shows more than the photo: colour, that of --background; "
          "blur, the photo itself, enlarged, blurred and darkened; photographs much narrower or "
          "longer than the frame are then shown whole unless --fit says otherwise [colour]");
  if (CanDrawLetters()) {
    declare("--caption", "TEXT", options.caption,
            "Text over the photo, near the frame's lower edge; {name} stands for its file's name, "
            "{date} for the day on which it was taken, {description} for what it says of itself, "
            "\\n for a new line");
  }
  declare("--rotate", "DEGREES", options.rotate,
          "Turn the photo clockwise beyond what its file says: 0, 90, 180, 270; views are of the "
          "photo as it is then [0]");
  declare("--play-mode", "N", options.playMode,
          "What the effect renders for: 0 final quality, 1 preview [0]");
}

RenderPlan PlanOf(const std::string& input) {
  return IsProjectName(input) ? ReadProject(input) : DefaultPlan(input);
}

void AddSources(const RenderPlan& plan, const PlanOptions& options, SandboxAccess& access) {
  AddSources(plan, access);
  access.reads.insert(access.reads.end(), {options.over, options.audio, options.views.faceModel});
}

namespace {

RenderPlan Changed(RenderPlan plan, const std::string& input, const PlanOptions& options,
                   std::optional<AskedMove>* calm = nullptr) {
  PlanOptions given = options;
  given.views.movesByItself = !IsProjectName(input) && options.views.movesByItself;
  return ChangedPlan(std::move(plan), input + ": ", given, calm);
}

}  // namespace

void AddSources(const std::string& input, const PlanOptions& options, SandboxAccess& access) {
  AddSources(PlanOf(input), options, access);
  access.reads.push_back(input);
}

RenderPlan PlanFor(const std::string& input, const PlanOptions& options, SandboxAccess others) {
  const InterruptsEndAtOnce whileItReads;
  RenderPlan plan = PlanOf(input);
  AddSources(plan, options, others);
  EnterSandbox(others);
  return Changed(std::move(plan), input, options);
}

Scene WholeScene(RenderPlan plan) {
  const FrameRange whole{0, plan.frames};
  if (plan.loop) ++plan.frames;
  return {std::move(plan), whole};
}

RenderPlan ChangedPlan(RenderPlan plan, const std::string& place, const PlanOptions& options,
                       std::optional<AskedMove>* calm) {
  if (!ApplyOptions(options, plan, calm)) CheckViews(place, plan);
  return plan;
}

RenderPlan ChangedPlan(const std::string& input, const PlanOptions& options,
                       std::optional<AskedMove>* calm) {
  return Changed(PlanOf(input), input, options, calm);
}

bool ApplyOptions(const PlanOptions& options, RenderPlan& plan, std::optional<AskedMove>* calm) {
  if (!options.rotate.empty()) {
    plan.rotate = ReadOption("--rotate", options.rotate, ParseRotation);
  }
  ApplyMedia(options, plan);
  ApplyFilm(options, plan);
  ApplyLists(options, plan);
  ApplyBeside(options, plan);
  if (!options.caption.empty()) {
    plan.caption.text = ReadOption("--caption", options.caption, [&](const std::string& text) {
      return CaptionFor(text, plan.photo);
    });
  }
  plan.linearLight |= options.linearLight;
  if (!options.playMode.empty()) {
    plan.playMode = ReadOption("--play-mode", options.playMode, ParsePlayMode);
  }
  // After all that can be found wrong without the photo.
  ViewOptions views = options.views;
  views.lengthGiven = !options.seconds.empty() || !options.frames.empty() ||
                      !options.over.empty() || options.fitAudio;
  AppliedViews applied = ApplyViews(views, plan);
  if (applied.given) SetShowsVelocities(options, plan);
  ApplyVelocities(options, plan);
  if (applied.calm) {
    applied.calm->views = plan.views;
    SetCalmMove(*applied.calm, plan);
  }
  if (calm != nullptr) *calm = std::move(applied.calm);
  return applied.given;
}

}  // namespace kelto::host
