// Moves by name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/track/photo_views.h"

namespace kelto::host {

/// What a move shows.
enum class Fit {
  kFill,    ///< nothing but photo
  kWhole,   ///< all of the photo at its widest, nothing but photo at its closest
  kBeside,  ///< all of the photo at its widest, and what lies beside it throughout
};

/// The fit of moves over a blurred photo: what is much narrower or longer than the frame is shown
/// with what lies beside it, the rest fills the frame.
Fit FitBeside(const PhotoViews& views);

/// Reads "fill" or "whole". Throws UsageError.
Fit ParseFit(std::string_view text);

/// The names of the moves, without "auto".
std::vector<std::string> MoveWords();
/// The same as a text, "in, out, ...".
std::string MoveNames();

/// Throws UsageError that says which names there are when `name` is none of them.
void CheckMoveName(std::string_view name);

/// First and last view of the move called `name`: "in" and "out" zoom by `amount`, else by half as
/// much again,
/// "left", "up-right" and the like pan as far as the photo goes that way, by views
/// that are smaller by `amount`; "hold" stands still. No
/// view shows what lies beside the photo, but as far as `fit` asks for it or zoom 20 cannot help
/// it. Throws UsageError as CheckMoveName does.
std::vector<PhotoRect> MoveViews(const PhotoViews& views, std::string_view name, Fit fit,
                                 std::optional<double> amount = std::nullopt);

/// A move of a show in which no two neighbours move alike.
struct MixedMove {
  std::string name;        ///< of MoveWords, or "auto"
  bool backwards = false;  ///< from its last view to its first
};

/// The move of picture `turn`, 0-based: in, a pan the way the photo is longer, out, a pan back.
MixedMove MixedMoveAt(const PhotoViews& views, int32_t turn);

}  // namespace kelto::host
