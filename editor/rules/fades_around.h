// What else is seen while a picture of a show is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/plan/render_plan.h"

namespace kelto::editor {

/// What settles whether the film of a show is drawn deep, which all of its pictures are then.
struct ShowDepths {
  bool possible = true;               ///< by their plans
  bool needed = false;                ///< by their plans alone, whatever their photos
  std::vector<std::string> photos{};  ///< of all pictures, as files
};

/// The pictures beside one of a show, or the card before the first, as far as fades show them. Of a
/// film of one picture all of it is empty.
struct FadesAround {
  std::optional<host::RenderPlan> before{}, after{};
  int32_t in = 0, out = 0;  ///< frames of the fade out of `before` or the card, and into `after`
  bool dip = false;         ///< whether they go through black
  std::string title{};      ///< of the card
  int32_t titleFrames = 0;  ///< for which it is seen, the fade included; 0 for no card
  std::optional<ShowDepths> depths{};  ///< of the show

  /// Frames of the card alone, ahead of the picture's first.
  int32_t Lead() const { return title.empty() ? 0 : titleFrames - in; }
};

}  // namespace kelto::editor
