// A film of one photo that may change, as pictures.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "editor/rules/film_way.h"
#include "host/effect/photo.h"
#include "host/frames/effect_session.h"
#include "host/plan/render_plan.h"

namespace kelto::editor {

/// Operations throw Error.
class FilmDrawing {
 public:
  /// Opens the plan's photo as far as its size.
  FilmDrawing(std::string module, const host::RenderPlan& plan);

  /// Draws this plan from now on, which has to be of the same photo.
  void SetPlan(const host::RenderPlan& plan);

  /// A frame of the film as the film has it, drawn in another size than the film's where that is
  /// asked for. The nearest frame that there is. The view holds until the next call.
  host::FrameView Draw(int32_t frame, host::FrameSize size, double quality);

  /// What frames of the film show, evenly chosen, `most` of them at the most, the first and the
  /// last among them.
  FilmWay Way(int32_t most);

  /// The photo's pixels, B, G, R, A, upright; reduced by an integer to `mostPixels` at the most.
  std::vector<uint8_t> PhotoPixels(int64_t mostPixels, host::FrameSize& size) const;

 private:
  std::string module_;
  host::RenderPlan plan_;
  host::Photo photo_;
  std::optional<host::EffectSession> session_;  ///< made when it is first needed
};

}  // namespace kelto::editor
