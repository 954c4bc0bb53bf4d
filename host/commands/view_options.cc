#include "host/commands/view_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <optional>

#include "host/base/error.h"
#include "host/commands/option_text.h"
#include "host/effect/photo.h"
#include "host/moves/auto_move.h"
#include "host/moves/photo_views.h"
#include "host/moves/presets.h"
#include "host/plan/default_plan.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

constexpr const char* kAuto = "auto";

/// Tells of a part that is shown with more around it than the frame's shape asks for.
void TellIfWidened(const std::string& option, const std::string& text, const PhotoRect& part,
                   const PhotoRect& shown) {
  constexpr double kRounding = 1e-9;
  const double asked = std::max(part.width, part.height * shown.width / shown.height);
  if (shown.width <= asked * (1 + kRounding)) return;
  char size[64];
  std::snprintf(size, sizeof size, "%.4gx%.4g", shown.width, shown.height);
  PrintMessage(option + " " + text + ": is widened to " + size +
               " pixels of the photo; zoom 20 goes no closer");
}

/// Reads views; opens the photo for the first that speaks of its pixels.
class ViewReader {
 public:
  explicit ViewReader(const RenderPlan& plan) : plan_(plan) {}

  View Read(const std::string& option, const std::string& text) {
    if (!IsPhotoRect(text)) return ReadOption(option, text, ParseView);
    const PhotoRect part = ReadOption(option, text, ParsePhotoRect);
    const PhotoViews& views = Views();
    const PhotoRect shown = views.Around(part);
    const View view =
        ReadOption(option, text, [&](const std::string&) { return views.ViewOf(shown); });
    TellIfWidened(option, text, part, shown);
    return view;
  }

  const Photo& OpenedPhoto() {
    if (!photo_) photo_ = OpenPhoto(plan_.photo);
    return *photo_;
  }

  const PhotoViews& Views() {
    if (!views_) views_.emplace(plan_, PixelSize{OpenedPhoto().width, OpenedPhoto().height});
    return *views_;
  }

 private:
  const RenderPlan& plan_;
  std::optional<Photo> photo_;
  std::optional<PhotoViews> views_;
};

std::vector<View> ViewsOfMove(const ViewOptions& options, ViewReader& reader) {
  const Fit fit = options.fit.empty() ? Fit::kFill : ReadOption("--fit", options.fit, ParseFit);
  const std::string move = options.move.empty() ? "hold" : options.move;
  const std::vector<PhotoRect> parts =
      ReadOption("--move", move, [&](const std::string& name) -> std::vector<PhotoRect> {
        // Names are looked at before the photo is opened.
        if (name != kAuto) CheckMoveName(name);
        const PhotoViews& views = reader.Views();
        if (name != kAuto) return MoveViews(views, name, fit);
        const Photo& photo = reader.OpenedPhoto();
        return AutoMove(views, {{photo.width, photo.height}, DecodePhoto(photo)}, fit);
      });
  std::vector<View> views;
  views.reserve(parts.size());
  for (const PhotoRect& part : parts) views.push_back(reader.Views().ViewOf(part));
  return views;
}

}  // namespace

void DeclareViews(CLI::App& command, const std::string& group, ViewOptions& options) {
  const auto given = [](const std::string& text) {
    return text.empty() ? std::string("nothing is given") : std::string();
  };
  const auto add = [&](const char* name, auto& value, const char* type, const std::string& help) {
    return command.add_option(name, value, help)->group(group)->type_name(type)->check(given);
  };
  CLI::Option* from = add(
      "--from", options.from, "VIEW",
      "First view: ZOOM or ZOOM@X,Y, zoom 0.1 to 20, centre in picture widths and heights to "
      "the right of and below the picture's centre; or X,Y,WIDTH,HEIGHT, a part of the photo in "
      "its pixels, widened where zoom 20 shows more");
  CLI::Option* to =
      add("--to", options.to, "VIEW", "Last view; with only one of the two the view stands still");
  CLI::Option* view =
      add("--view", options.views, "VIEW",
          "A view; given several times, the views that the move goes through, evenly "
          "spaced in time");
  view->allow_extra_args(false);
  CLI::Option* move =
      add("--move", options.move, "NAME",
          "A move that stays within the photo, as far as zoom 20 goes: " + MoveNames() +
              "; or auto, in to what is most out of the ordinary");
  CLI::Option* fit =
      add("--fit", options.fit, "WORD",
          "Widest view of a move: fill shows nothing but photo, whole shows all of it "
          "[fill]");
  for (CLI::Option* one : {view, move, fit}) one->excludes(from)->excludes(to);
  view->excludes(move)->excludes(fit);
}

void ApplyViews(const ViewOptions& options, RenderPlan& plan) {
  ViewReader reader(plan);
  if (!options.move.empty() || !options.fit.empty()) {
    SetMove(plan, ViewsOfMove(options, reader));
    return;
  }
  std::vector<View> views;
  views.reserve(options.views.size() + 2);
  for (const std::string& text : options.views) views.push_back(reader.Read("--view", text));
  if (!options.from.empty()) views.push_back(reader.Read("--from", options.from));
  if (!options.to.empty()) views.push_back(reader.Read("--to", options.to));
  if (!views.empty()) SetMove(plan, views);
}

}  // namespace kelto::host
