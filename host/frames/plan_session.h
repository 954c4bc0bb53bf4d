// What draws the frames of one plan.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/frames/played_film.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// Frames come in one layout, which is settled when the session begins. Operations throw Error.
class PlanSession : public PlayedFilm {
 public:
  /// Renders as Render does, into memory of the caller's, `rowBytes` from one row to the row below.
  /// What the effect leaves alone in a frame keeps what it has there.
  virtual void RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, int32_t number, double quality) = 0;

  /// Renders another plan from now on, without loading the photo again. False, with nothing
  /// changed, where that takes another session. After an Error the session is of no use.
  virtual bool Adopt(const RenderPlan& plan) = 0;
};

}  // namespace kelto::host
