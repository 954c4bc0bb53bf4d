#include "host/moves/presets.h"

#include <algorithm>
#include <iterator>

#include "host/base/error.h"
#include "host/base/texts.h"

namespace kelto::host {
namespace {

constexpr double kZoomBy = 1.5;
/// A pan goes over at least a fifth of the photo's side: views are made that much smaller.
constexpr double kRoom = 0.8;

enum class Kind { kIn, kOut, kHold, kPan };

/// `across` and `down` are the direction that the view goes in.
struct Move {
  const char* name;
  Kind kind;
  int across, down;
};

constexpr Move kMoves[] = {
    {"in", Kind::kIn, 0, 0},          {"out", Kind::kOut, 0, 0},
    {"left", Kind::kPan, -1, 0},      {"right", Kind::kPan, 1, 0},
    {"up", Kind::kPan, 0, -1},        {"down", Kind::kPan, 0, 1},
    {"up-left", Kind::kPan, -1, -1},  {"up-right", Kind::kPan, 1, -1},
    {"down-left", Kind::kPan, -1, 1}, {"down-right", Kind::kPan, 1, 1},
    {"hold", Kind::kHold, 0, 0},
};

/// Begin of a view of this length at one end of the photo, the other, or in the middle.
double At(int end, double length, double photo) {
  if (end == 0 || length >= photo) return (photo - length) / 2;
  return end < 0 ? 0.0 : photo - length;
}

const Move& MoveCalled(std::string_view name) {
  const Move* move = std::find_if(std::begin(kMoves), std::end(kMoves),
                                  [&](const Move& one) { return one.name == name; });
  if (move == std::end(kMoves)) throw UsageError("choose one of " + MoveNames() + ", auto");
  return *move;
}

std::vector<PhotoRect> Pan(const PhotoViews& views, const Move& move, double width) {
  const PhotoRect photo = views.Photo();
  const PhotoRect start = views.About(0, 0, width);
  double scale = 1.0;
  if (move.across != 0) scale = std::min(scale, kRoom * photo.width / start.width);
  if (move.down != 0) scale = std::min(scale, kRoom * photo.height / start.height);
  PhotoRect from = views.About(0, 0, width * scale), to = from;
  from.x = At(-move.across, from.width, photo.width);
  from.y = At(-move.down, from.height, photo.height);
  to.x = At(move.across, to.width, photo.width);
  to.y = At(move.down, to.height, photo.height);
  return {from, to};
}

}  // namespace

Fit ParseFit(std::string_view text) {
  if (text == "fill") return Fit::kFill;
  if (text == "whole") return Fit::kWhole;
  throw UsageError("choose one of fill, whole");
}

Fit FitBeside(const PhotoViews& views) {
  // 4:3 in 16:9 loses a quarter, which is cropped without regret.
  constexpr double kMuch = 1.4;
  return views.Whole().width > kMuch * views.Fill().width ? Fit::kBeside : Fit::kFill;
}

std::vector<std::string> MoveWords() {
  std::vector<std::string> words;
  for (const Move& move : kMoves) words.emplace_back(move.name);
  return words;
}

std::string MoveNames() { return Joined(MoveWords()); }

void CheckMoveName(std::string_view name) { MoveCalled(name); }

std::vector<PhotoRect> MoveViews(const PhotoViews& views, std::string_view name, Fit fit,
                                 std::optional<double> amount) {
  const Move& move = MoveCalled(name);
  const PhotoRect fill = views.Fill();
  const PhotoRect wide = fit == Fit::kFill ? fill : views.Whole();
  // Where a view of the whole photo has bars beside it, the close one fills the frame.
  const PhotoRect close = views.About(wide.CentreX(), wide.CentreY(),
                                      std::min(fit == Fit::kBeside ? wide.width : fill.width,
                                               wide.width / amount.value_or(kZoomBy)));
  switch (move.kind) {
    case Kind::kIn:
      return {wide, close};
    case Kind::kOut:
      return {close, wide};
    case Kind::kHold:
      return {wide, wide};
    case Kind::kPan:
      break;
  }
  return Pan(views, move, wide.width / amount.value_or(1.0));
}

MixedMove MixedMoveAt(const PhotoViews& views, int32_t turn) {
  const PhotoRect photo = views.Photo(), fill = views.Fill();
  const bool across = photo.width / fill.width >= photo.height / fill.height;
  switch (turn % 4) {
    case 0:
      return {"auto", false};
    case 1:
      return {across ? "right" : "down", false};
    case 2:
      return {"auto", true};
    default:
      return {across ? "left" : "up", false};
  }
}

}  // namespace kelto::host
