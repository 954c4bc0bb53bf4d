#include "host/commands/view_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <optional>

#include "host/base/error.h"
#include "host/commands/option_text.h"
#include "host/effect/photo.h"
#include "host/faces/face_search.h"
#include "host/files/input_file.h"
#include "host/moves/auto_move.h"
#include "host/moves/face_move.h"
#include "host/moves/presets.h"
#include "host/options/motion_law.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/plan/default_plan.h"
#include "host/processes/reader_process.h"
#include "host/sources/photos.h"
#include "host/terminal/terminal.h"
#include "host/track/photo_views.h"

namespace kelto::host {
namespace {

constexpr const char* kAuto = "auto";
constexpr const char* kMixed = "mixed";
/// Of moves that nobody asked for by name: five seconds of it are calm.
constexpr double kGentleAmount = 1.25;

/// Reports a part that is shown with more around it than the frame's shape asks for.
void ReportIfWidened(const std::string& name, const PhotoRect& part, const PhotoRect& shown) {
  constexpr double kRounding = 1e-9;
  const double asked = std::max(part.width, part.height * shown.width / shown.height);
  if (shown.width <= asked * (1 + kRounding)) return;
  char size[64];
  std::snprintf(size, sizeof size, "%.4gx%.4g", shown.width, shown.height);
  PrintMessage(name + ": is widened to " + size + " pixels of the photo; zoom 20 goes no closer");
}

/// Reads views; opens the photo for the first that speaks of its pixels.
class ViewReader {
 public:
  explicit ViewReader(const RenderPlan& plan) : plan_(plan) {}

  GivenView ReadGiven(const std::string& option, const std::string& text) {
    const GivenView given = ReadOption(option, text, ParseGivenView);
    ReadOption(option, text, [&](const std::string&) { return ViewOf(option, given); });
    return given;
  }

  View Read(const std::string& option, const std::string& text) {
    return ViewOf(option, ReadGiven(option, text), false);
  }

  /// The view of the photo that is meant by `given`, named `name` in the message that it is shown
  /// with more around it. Throws UsageError.
  View ViewOf(const std::string& name, const GivenView& given, bool tell = true) {
    const auto* part = std::get_if<PhotoRect>(&given);
    if (part == nullptr) return std::get<View>(given);
    const View view = Views().ViewOf(given);
    if (tell) ReportIfWidened(name + " " + TextOf(given), *part, Views().Around(*part));
    return view;
  }

  const RenderPlan& Plan() const { return plan_; }

  const Photo& OpenedPhoto() {
    if (!photo_) photo_ = LookAtPhoto(PhotoName(plan_));
    return *photo_;
  }

  /// The largest view that shows nothing but photo.
  View Widest() { return Views().ViewOf(Views().Fill()); }

  /// Whether the move goes from face to face, because no view has room for all.
  bool visitsFaces = false;

  const PhotoViews& Views() {
    if (!views_) views_.emplace(plan_, PixelSize{OpenedPhoto().width, OpenedPhoto().height});
    return *views_;
  }

 private:
  const RenderPlan& plan_;
  std::optional<Photo> photo_;
  std::optional<PhotoViews> views_;
};

double ParseAmount(const std::string& text) {
  const auto amount = ParseNumber(text);
  if (!amount || !(*amount >= 1.0 && *amount <= kMaxZoom)) {
    throw UsageError("an amount is a zoom from 1 to 20, such as 1.25");
  }
  return *amount;
}

std::string MoveWord(const ViewOptions& options) {
  if (!options.move.empty()) return options.move;
  if (!options.movesByItself) return "hold";
  return CanFindInterest() ? kAuto : "in";
}

/// What a move is to be found by.
enum class FoundBy { kFacesOrInterest, kFaces };

/// FaceMove to the faces in the photo, else AutoMove, in a process of its own, since it reads all
/// of the photo; nothing where only faces will do and there are none. `model` as for SearchFaces.
std::optional<std::vector<PhotoRect>> FindMove(const PhotoViews& views, const Photo& photo, Fit fit,
                                               double amount, FoundBy by,
                                               const std::string& model) {
  if (!model.empty()) CheckFile(model, "a YuNet model");
  const auto look = [&] {
    std::vector<uint8_t> pixels;
    const std::vector<PhotoRect> faces = SearchFaces(photo, model, pixels).faces;
    const bool interest = faces.empty() && by == FoundBy::kFacesOrInterest;
    std::vector<PhotoRect> parts(2);
    if (!faces.empty()) parts = FaceMove(views, faces, fit, amount);
    if (interest) {
      parts = AutoMove(views, {{photo.width, photo.height}, std::move(pixels)}, fit, amount);
    }
    std::vector<double> numbers{!faces.empty() || interest ? 1.0 : 0.0};
    for (const PhotoRect& part : parts) {
      numbers.insert(numbers.end(), {part.x, part.y, part.width, part.height});
    }
    return numbers;
  };
  const std::vector<double> found = NumbersApart(photo.given, 9, look, {model});
  if (found[0] == 0.0) return std::nullopt;
  return std::vector<PhotoRect>{{found[1], found[2], found[3], found[4]},
                                {found[5], found[6], found[7], found[8]}};
}

/// Whether a move that was found goes from face to face: others are closer at one end.
bool IsVisit(const std::vector<PhotoRect>& parts) {
  return parts.front().width == parts.back().width && parts.front() != parts.back();
}

/// The move of a show's picture: what MixedMoveAt says, but that faces are never panned over; they
/// are gone in to and drawn back from in turns.
std::vector<PhotoRect> PartsOfMixedMove(const ViewOptions& options, ViewReader& reader, Fit fit,
                                        std::optional<double> amount);

Fit FitFor(const ViewOptions& options, ViewReader& reader) {
  const bool beside = reader.Plan().beside == Beside::kBlur;
  if (!options.fit.empty()) {
    const Fit fit = ReadOption("--fit", options.fit, ParseFit);
    return beside && fit == Fit::kWhole ? Fit::kBeside : fit;
  }
  return beside ? FitBeside(reader.Views()) : Fit::kFill;
}

/// The parts of the photo that the move called `name` goes between.
std::vector<PhotoRect> PartsOfMove(const ViewOptions& options, const std::string& name,
                                   ViewReader& reader, std::optional<double> amount) {
  if (name == kMixed) {
    if (!options.turn) {
      throw UsageError("is for the pictures of a slideshow; choose one of " + MoveNames() +
                       ", auto");
    }
    return PartsOfMixedMove(options, reader, FitFor(options, reader), amount);
  }
  // Names are looked at before the photo is opened.
  if (name != kAuto) CheckMoveName(name);
  const PhotoViews& views = reader.Views();
  const Fit fit = FitFor(options, reader);
  if (name != kAuto) return MoveViews(views, name, fit, amount);
  const Photo& photo = reader.OpenedPhoto();
  auto parts = FindMove(views, photo, fit, amount.value_or(kUsualAutoAmount),
                        FoundBy::kFacesOrInterest, options.faceModel);
  reader.visitsFaces = IsVisit(*parts);
  return *parts;
}

std::vector<PhotoRect> PartsOfMixedMove(const ViewOptions& options, ViewReader& reader, Fit fit,
                                        std::optional<double> amount) {
  const int32_t turn = *options.turn;
  auto parts = FindMove(reader.Views(), reader.OpenedPhoto(), fit,
                        amount.value_or(kUsualAutoAmount), FoundBy::kFaces, options.faceModel);
  if (parts) {
    reader.visitsFaces = IsVisit(*parts);
    if (turn % 2 == 1) std::reverse(parts->begin(), parts->end());
    return *parts;
  }
  MixedMove mixed = MixedMoveAt(reader.Views(), turn);
  if (mixed.name == kAuto && !CanFindInterest()) mixed.name = "in";
  parts = PartsOfMove(options, mixed.name, reader, amount);
  if (mixed.backwards) std::reverse(parts->begin(), parts->end());
  return *parts;
}

std::vector<View> ViewsOfMove(const ViewOptions& options, ViewReader& reader) {
  const std::string move = MoveWord(options);
  std::optional<double> amount;
  if (options.move.empty() || move == kMixed) amount = kGentleAmount;
  if (!options.amount.empty()) amount = ReadOption("--amount", options.amount, ParseAmount);
  const std::vector<PhotoRect> parts = ReadOption("--move", move, [&](const std::string& name) {
    return PartsOfMove(options, name, reader, amount);
  });
  std::vector<View> views;
  views.reserve(parts.size());
  for (const PhotoRect& part : parts) views.push_back(reader.Views().ViewOf(part));
  return views;
}

/// The views of --from and --to; one of the two alone begins or ends with the widest view that
/// fills the frame.
std::vector<View> EndsGiven(const ViewOptions& options, ViewReader& reader) {
  const auto end = [&](const char* option, const std::string& text) {
    return text.empty() ? reader.Widest() : reader.Read(option, text);
  };
  return {end("--from", options.from), end("--to", options.to)};
}

double ParseSpeedLimit(const std::string& text) {
  const auto most = ParseNumber(text);
  if (!most || !(*most > 0.0 && *most <= 1000.0)) {
    throw UsageError("a speed is a number above 0, such as 0.2");
  }
  return *most;
}

/// The limits that hold for the move that the options ask for. What an amount or a face to go to
/// asks for is only limited by name.
std::optional<AskedMove> LimitsFor(const ViewOptions& options, ViewReader& reader) {
  const bool named = !options.maxSpeed.empty() || !options.maxZoomRate.empty();
  const std::string move = MoveWord(options);
  AskedMove limits;
  limits.usual = (move == kAuto || move == kMixed) && options.amount.empty() && !reader.visitsFaces;
  if (!named && !limits.usual) return std::nullopt;
  limits.photo = {reader.OpenedPhoto().width, reader.OpenedPhoto().height};
  if (!options.maxSpeed.empty()) {
    limits.pan = ReadOption("--max-speed", options.maxSpeed, ParseSpeedLimit);
  }
  if (!options.maxZoomRate.empty()) {
    limits.zoom = ReadOption("--max-zoom-rate", options.maxZoomRate, ParseSpeedLimit);
  }
  if (named && options.motion == "linear") {
    throw UsageError(
        "--max-speed and --max-zoom-rate are for --motion steady and fly; leave --motion linear "
        "out");
  }
  return limits;
}

/// Sets the views of --view, and the film's length where they say it.
void SetTour(const ViewOptions& options, ViewReader& reader, RenderPlan& plan) {
  std::vector<TourView> given = TourOf(
      options.tour, [&](const std::string& text) { return reader.ReadGiven("--view", text); });
  if (options.loop || plan.loop) CloseTour(given);
  plan.SetTour(std::move(given));
  if (HasTimes(plan.views) && !options.lengthGiven) {
    plan.frames = FramesOf(SecondsOf(plan.views), plan.format.rate);
  }
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
      add("--to", options.to, "VIEW",
          "Last view; with only one of the two the move begins or ends with the widest view that "
          "fills the frame");
  CLI::Option* view =
      add("--view", options.views, "VIEW",
          "A view; given several times, the views that the move goes through, evenly "
          "spaced in time unless --hold and --go say otherwise");
  CLI::Option* hold =
      add("--hold", options.holds, "TIME", "After a --view: seconds for which it is looked at [0]");
  CLI::Option* go = add("--go", options.goes, "TIME",
                        "After a --view: seconds of the way to the next one, from which, with all "
                        "--hold, the film's length follows unless it is given [2]");
  for (CLI::Option* one : {view, hold, go}) one->allow_extra_args(false);
  for (CLI::Option* one : {hold, go}) one->needs(view);
  command.parse_complete_callback([&command, &options] { options.tour = TourWordsOf(command); });
  CLI::Option* move =
      add("--move", options.move, "NAME",
          "A move that stays within the photo, as far as zoom 20 goes: " + MoveNames() +
              "; or auto, in to the faces or else to the most eye-catching area");
  CLI::Option* fit =
      add("--fit", options.fit, "WORD",
          "Widest view of a move: fill shows nothing but photo, whole shows all of it "
          "[fill]");
  CLI::Option* amount =
      add("--amount", options.amount, "ZOOM",
          "How much closer a move goes: 1 to 20 [1.5; auto 1.43; without --move 1.25]");
  add("--motion", options.motion, "WORD",
      "How one view becomes the next: steady, at an even rate of zoom and straight to where it "
      "ends; fly, drawing back between close-ups; linear, as the effect's keys do "
      "[steady; a project's own]");
  if (CanFindInterest()) {
    add("--face-model", options.faceModel, "FILE",
        "Find faces by this YuNet model, a file .onnx, not by OpenCV's cascades");
  }
  CLI::Option* speed = add(
      "--max-speed", options.maxSpeed, "SPEED",
      "Shorten the move where it would pan faster, in frame widths a second [0.3 for moves that "
      "are found by themselves, without --amount]");
  CLI::Option* rate =
      add("--max-zoom-rate", options.maxZoomRate, "RATE",
          "Shorten the move where it would zoom faster, in doublings a second [0.5, likewise]");
  for (CLI::Option* one : {view, move, fit, amount, speed, rate}) {
    one->excludes(from)->excludes(to);
  }
  view->excludes(speed)->excludes(rate);
  view->excludes(move)->excludes(fit)->excludes(amount);
}

AppliedViews ApplyViews(const ViewOptions& options, RenderPlan& plan) {
  ViewReader reader(plan);
  const bool tour = !options.tour.empty();
  const bool ends = !options.from.empty() || !options.to.empty();
  const bool move = !options.move.empty() || !options.fit.empty() || !options.amount.empty() ||
                    !options.maxSpeed.empty() || !options.maxZoomRate.empty() ||
                    (options.movesByItself && plan.frames > 1);
  if (tour) {
    SetTour(options, reader, plan);
  } else if (ends) {
    SetMove(plan, EndsGiven(options, reader));
  } else if (move) {
    SetMove(plan, ViewsOfMove(options, reader));
  }
  AppliedViews applied;
  applied.given = tour || ends || move;
  if (move && !tour && !ends) {
    applied.calm = LimitsFor(options, reader);
  }
  plan.loop = plan.loop || options.loop;
  if (plan.loop && plan.views.empty()) {
    throw UsageError("--loop: the project has keys of its own; give it a list of views, or --view");
  }
  if (plan.loop) CloseTour(plan.views);
  if (applied.given) {
    if (plan.motion == MotionLaw::kLinear) plan.motion = MotionLaw::kSteady;
  }
  if (!options.motion.empty()) {
    plan.motion = ReadOption("--motion", options.motion,
                             [](const std::string& text) { return ParseMotionLaw(text); });
  }
  return applied;
}

void CheckViews(const std::string& place, const RenderPlan& plan) {
  ViewReader reader(plan);
  for (size_t i = 0; i < plan.views.size(); ++i) {
    const std::string field = place + "views[" + std::to_string(i) + "].view:";
    const GivenView& given = plan.views[i].view;
    try {
      reader.ViewOf(field, given);
    } catch (const UsageError& error) {
      throw Error(field + " " + TextOf(given) + ": " + error.what());
    }
  }
}

}  // namespace kelto::host
