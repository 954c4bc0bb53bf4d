#include "host/commands/render.h"

#include <CLI/CLI.hpp>

#include "host/error.h"
#include "host/film/formats.h"
#include "host/film/output_file.h"
#include "host/options/choices.h"
#include "host/options/colour.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/options/size.h"
#include "host/options/view.h"
#include "host/session/effect_session.h"
#include "host/session/module_file.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

constexpr double kDefaultSeconds = 5.0;
constexpr size_t kMaxMessage = 300;

/// What `parse` makes of an option's text; its complaint is told with the option in front.
template <typename Parse>
auto Option(const std::string& option, const std::string& text, Parse parse) {
  try {
    return parse(text);
  } catch (const UsageError& error) {
    throw UsageError(option + " " + text.substr(0, kMaxMessage) + ": " + error.what());
  }
}

FieldOrder ParseFields(const std::string& text) {
  if (text == "top") return FieldOrder::kTopFirst;
  if (text == "bottom") return FieldOrder::kBottomFirst;
  throw UsageError("choose one of top, bottom");
}

int32_t ParsePlayMode(const std::string& text) {
  const auto mode = ParseWhole(text);
  if (!mode || *mode < 0 || *mode > 255) {
    throw UsageError("a play mode is a whole number from 0 to 255, such as 0 or 1");
  }
  return static_cast<int32_t>(*mode);
}

int32_t FramesAsked(const RenderArguments& arguments, FrameRate rate) {
  if (!arguments.frames.empty()) return Option("--frames", arguments.frames, ParseFrames);
  if (arguments.seconds.empty()) return FramesOf(kDefaultSeconds, rate);
  return Option("--seconds", arguments.seconds,
                [&](const std::string& text) { return FramesOf(ParseSeconds(text), rate); });
}

/// The entry that the words choose for `parameter`.
std::string EntryAsked(const RenderArguments& arguments, size_t list) {
  const ChoiceList& choices = ChoiceLists()[list];
  return Option(choices.option, arguments.words[list],
                [&](const std::string& word) { return EntryOf(choices, word); });
}

void SetMotion(const RenderArguments& arguments, RenderPlan& plan) {
  std::string arrival, departure;
  for (size_t i = 0; i < ChoiceLists().size(); ++i) {
    const std::string parameter = ChoiceLists()[i].parameter;
    const std::string entry = EntryAsked(arguments, i);
    if (parameter == "invelocity") {
      arrival = entry;
    } else if (parameter == "outvelocity") {
      departure = entry;
    } else {
      plan.lists.push_back({parameter, entry});
    }
  }
  // With one view, or none, the picture stands still.
  std::vector<View> views;
  if (!arguments.from.empty()) views.push_back(Option("--from", arguments.from, ParseView));
  if (!arguments.to.empty()) views.push_back(Option("--to", arguments.to, ParseView));
  if (views.empty()) views.push_back({});
  plan.keys = {{0.0, views.front(), arrival, departure}, {1.0, views.back(), arrival, departure}};
}

RenderPlan PlanOf(const RenderArguments& arguments) {
  RenderPlan plan;
  plan.photo = arguments.photo;
  plan.format.size = Option("--size", arguments.size, ParseSize);
  plan.format.rate = Option("--fps", arguments.rate, ParseRate);
  if (!arguments.fields.empty()) {
    plan.format.fields = Option("--fields", arguments.fields, ParseFields);
  }
  plan.frames = FramesAsked(arguments, plan.format.rate);
  plan.background = Option("--background", arguments.background, ParseColour);
  plan.playMode = Option("--play-mode", arguments.playMode, ParsePlayMode);
  SetMotion(arguments, plan);
  return plan;
}

std::string FormatHelp() {
  std::string help = "Kind of film, when the output's name does not end in it:";
  for (const FilmKind& kind : FilmKinds()) {
    help += std::string("\n") + kind.name + ": " + kind.description;
  }
#if !defined(KELTO_FFMPEG)
  help += "\nH.264 films (mp4, mkv, mov) are written by the Linux command only";
#endif
  return help;
}

}  // namespace

void DeclareRender(CLI::App& command, RenderArguments& arguments) {
  command.add_option("PHOTO", arguments.photo, "The photograph")->required()->type_name("");
  const auto declare = [&](const char* group, const char* option, const char* type,
                           std::string& text, const std::string& help) {
    return command.add_option(option, text, help)
        ->group(group)
        ->type_name(type)
        ->capture_default_str();
  };

  constexpr const char* kFiles = "Files";
  declare(kFiles, "-o,--output", "FILE", arguments.output,
          "The film, replaced if it is there; - writes to the standard output")
      ->required();
  declare(kFiles, "--format", "KIND", arguments.format, FormatHelp());
  declare(kFiles, "--module", "FILE", arguments.module,
          std::string("The effect's module; else the environment variable ") + kModuleVariable +
              ", else the installed " + kModuleName);

  constexpr const char* kFilm = "Film";
  declare(kFilm, "--size", "WxH", arguments.size, "Frame size in pixels");
  declare(kFilm, "--fps", "RATE", arguments.rate, "Frames a second: 25, 29.97, 30000/1001 ...");
  CLI::Option* seconds =
      declare(kFilm, "--seconds", "TIME", arguments.seconds, "Length in seconds [5]");
  declare(kFilm, "--frames", "N", arguments.frames, "Length in frames")->excludes(seconds);
  declare(kFilm, "--fields", "ORDER", arguments.fields,
          "Interlaced, with this field first: top, bottom [whole frames]");

  constexpr const char* kPicture = "Picture";
  declare(kPicture, "--from", "VIEW", arguments.from,
          "First view, ZOOM or ZOOM@X,Y: zoom 0.1 to 20, centre in picture widths and heights to "
          "the right of and below the picture's centre");
  declare(kPicture, "--to", "VIEW", arguments.to,
          "Last view; with only one of the two the view stands still");
  arguments.words.resize(ChoiceLists().size());
  for (size_t i = 0; i < ChoiceLists().size(); ++i) {
    const ChoiceList& list = ChoiceLists()[i];
    arguments.words[i] = list.preset;
    declare(kPicture, list.option, "WORD", arguments.words[i],
            std::string(list.help) + ": " + WordsOf(list));
  }
  declare(kPicture, "--background", "COLOUR", arguments.background,
          "Colour beside the photo, '#rrggbb'");
  declare(kPicture, "--play-mode", "N", arguments.playMode,
          "What the effect is told it renders for: 0 final quality, 1 preview");
}

void RunRender(const RenderArguments& arguments) {
  if (arguments.photo.empty()) throw UsageError("PHOTO is empty; name the photograph");
  if (arguments.output.empty()) throw UsageError("-o is empty; name the film");
  const RenderPlan plan = PlanOf(arguments);
  const FilmKind& kind = KindFor(arguments.output, arguments.format);
  const FilmRequest request{arguments.output, plan.format, plan.frames};
  CheckRequest(kind, request);
  if (arguments.output == kStandardOutput && StandardOutputIsTerminal()) {
    throw UsageError("-o -: will not write a film to the terminal; send it to a program or file");
  }
  const std::string module = FindModule(arguments.module);
  const Photo photo = OpenPhoto(plan.photo);
  if (WouldReplace(kind, request, plan.photo)) {
    throw UsageError(arguments.output + ": is the photo itself; give the film another name");
  }

  const std::unique_ptr<FrameSink> film = kind.open(request);
  EffectSession session(module, plan, photo, kind.layout);
  session.SetAbortQuery([] { return InterruptSignal() != 0; });
  for (int32_t frame = 0; frame < plan.frames; ++frame) {
    film->Write(session.Render(frame));
    ShowProgress(frame + 1, plan.frames);
  }
  film->Finish();
  ClearProgress();
}

}  // namespace kelto::host
