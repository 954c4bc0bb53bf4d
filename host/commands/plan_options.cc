#include "host/commands/plan_options.h"

#include <CLI/CLI.hpp>
#include <optional>

#include "host/commands/option_text.h"
#include "host/error.h"
#include "host/options/choices.h"
#include "host/options/colour.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/options/size.h"
#include "host/options/view.h"

namespace kelto::host {
namespace {

constexpr double kDefaultSeconds = 5.0;
constexpr const char* kArrival = "invelocity";
constexpr const char* kDeparture = "outvelocity";

/// An empty text would pass for an option that was not given.
std::string GivenText(const std::string& text) { return text.empty() ? "nothing is given" : ""; }

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

void ApplyFilm(const PlanOptions& options, RenderPlan& plan) {
  FilmFormat& format = plan.format;
  if (!options.size.empty()) format.size = ReadOption("--size", options.size, ParseSize);
  if (!options.rate.empty()) {
    const double seconds = plan.frames / format.rate.PerSecond();
    format.rate = ReadOption("--fps", options.rate, ParseRate);
    plan.frames = FramesOf(seconds, format.rate);
  }
  if (!options.frames.empty()) plan.frames = ReadOption("--frames", options.frames, ParseFrames);
  if (!options.seconds.empty()) {
    plan.frames = ReadOption("--seconds", options.seconds, [&](const std::string& text) {
      return FramesOf(ParseSeconds(text), format.rate);
    });
  }
  if (!options.fields.empty()) format.fields = ReadOption("--fields", options.fields, ParseFields);
}

/// Sets the velocity of every key there is.
void SetVelocity(RenderPlan& plan, const std::string& parameter, const std::string& entry) {
  for (SettingKey& key : plan.SettingOf(parameter).keys) key.value = entry;
}

void ApplyLists(const PlanOptions& options, RenderPlan& plan) {
  for (size_t i = 0; i < options.words.size(); ++i) {
    if (options.words[i].empty()) continue;
    const ChoiceList& list = ChoiceLists()[i];
    const std::string entry =
        ReadOption(list.option, options.words[i],
                   [&](const std::string& word) { return EntryOf(list, word); });
    if (list.parameter == std::string(kArrival) || list.parameter == std::string(kDeparture)) {
      SetVelocity(plan, list.parameter, entry);
    } else {
      plan.Set(list.parameter, entry);
    }
  }
}

std::optional<View> ViewAsked(const std::string& option, const std::string& text) {
  if (text.empty()) return std::nullopt;
  return ReadOption(option, text, ParseView);
}

void ApplyViews(const PlanOptions& options, RenderPlan& plan) {
  const auto from = ViewAsked("--from", options.from), to = ViewAsked("--to", options.to);
  if (!from && !to) return;
  SetMove(plan, from.value_or(to.value_or(View{})), to.value_or(from.value_or(View{})));
}

}  // namespace

void SetMove(RenderPlan& plan, const View& from, const View& to) {
  const auto preset = [](const char* parameter) {
    const ChoiceList& list = ListOf(parameter);
    return EntryOf(list, list.preset);
  };
  const std::string arrival = preset(kArrival), departure = preset(kDeparture);
  const ViewKey keys[] = {{0.0, from, arrival, departure}, {1.0, to, arrival, departure}};
  plan.SetViews(keys);
}

void DeclarePlan(CLI::App& command, PlanOptions& options) {
  const auto declare = [&](const char* group, const char* option, const char* type,
                           std::string& text, const std::string& help) {
    return command.add_option(option, text, help)->group(group)->type_name(type)->check(GivenText);
  };

  constexpr const char* kFilm = "Film";
  declare(kFilm, "--size", "WxH", options.size, "Frame size in pixels [1920x1080]");
  declare(kFilm, "--fps", "RATE", options.rate, "Frames a second: 25, 29.97, 30000/1001 ... [25]");
  CLI::Option* seconds =
      declare(kFilm, "--seconds", "TIME", options.seconds, "Length in seconds [5]");
  declare(kFilm, "--frames", "N", options.frames, "Length in frames")->excludes(seconds);
  declare(kFilm, "--fields", "ORDER", options.fields,
          "Interlaced, with this field first: top, bottom [whole frames]");

  constexpr const char* kPicture = "Picture";
  declare(kPicture, "--from", "VIEW", options.from,
          "First view, ZOOM or ZOOM@X,Y: zoom 0.1 to 20, centre in picture widths and heights to "
          "the right of and below the picture's centre");
  declare(kPicture, "--to", "VIEW", options.to,
          "Last view; with only one of the two the view stands still");
  options.words.resize(ChoiceLists().size());
  for (size_t i = 0; i < ChoiceLists().size(); ++i) {
    const ChoiceList& list = ChoiceLists()[i];
    declare(kPicture, list.option, "WORD", options.words[i],
            std::string(list.help) + ": " + WordsOf(list) + " [" + list.preset + "]");
  }
  declare(kPicture, "--background", "COLOUR", options.background,
          "Colour beside the photo, '#rrggbb' [#000000]");
  declare(kPicture, "--play-mode", "N", options.playMode,
          "What the effect is told it renders for: 0 final quality, 1 preview [0]");
}

RenderPlan DefaultPlan(const std::string& photo) {
  RenderPlan plan;
  plan.photo = photo;
  plan.frames = FramesOf(kDefaultSeconds, plan.format.rate);
  for (const ChoiceList& list : ChoiceLists()) {
    const std::string parameter = list.parameter;
    if (parameter == kArrival || parameter == kDeparture) continue;
    plan.Set(parameter, EntryOf(list, list.preset));
  }
  plan.Set("bgcolor", BackgroundFor({}));
  SetMove(plan, {}, {});
  return plan;
}

RenderPlan PlanFor(const std::string& input, const PlanOptions& options) {
  RenderPlan plan = DefaultPlan(input);
  ApplyOptions(options, plan);
  return plan;
}

void ApplyOptions(const PlanOptions& options, RenderPlan& plan) {
  ApplyFilm(options, plan);
  ApplyViews(options, plan);
  ApplyLists(options, plan);
  if (!options.background.empty()) {
    plan.Set("bgcolor", BackgroundFor(ReadOption("--background", options.background, ParseColour)));
    plan.Set("compositeover", std::string("Background: Color"));
  }
  if (!options.playMode.empty()) {
    plan.playMode = ReadOption("--play-mode", options.playMode, ParsePlayMode);
  }
}

}  // namespace kelto::host
