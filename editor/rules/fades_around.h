// What else is seen while a picture of a show is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/plan/render_plan.h"

namespace kelto::editor {

/// The pictures beside one of a show, or the card before the first, as far as fades show them. Of a
/// film of one picture all of it is empty.
struct FadesAround {
  std::optional<host::RenderPlan> before{}, after{};
  int32_t in = 0, out = 0;  ///< frames of the fade out of `before` or the card, and into `after`
  bool dip = false;         ///< whether they go through black
  std::string title{};      ///< of the card
  int32_t titleFrames = 0;  ///< for which it is seen, the fade included; 0 for no card

  /// Frames of the card alone, ahead of the picture's first.
  int32_t Lead() const { return title.empty() ? 0 : titleFrames - in; }
};

}  // namespace kelto::editor
