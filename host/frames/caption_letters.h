// A plan's caption over its frames.
#pragma once

#include <cstdint>
#include <string>

#include "host/base/film_format.h"
#include "host/lettering/lettering.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

class CaptionLetters {
 public:
  /// `plan` has a caption, of the photo called `photo` in messages: one says where letters are
  /// missing. Throws Error where the caption cannot be drawn.
  CaptionLetters(const RenderPlan& plan, const std::string& photo, PixelLayout layout);

  /// Has the caption seen when `plan` has it, whose text and format are those of before.
  void SetTimes(const RenderPlan& plan);

  /// Blends the caption over frame `number`, as opaque as it is then.
  void Over(uint8_t* pixels, ptrdiff_t rowBytes, int32_t number) const;

 private:
  int32_t from_, until_;  ///< frames: the first that has it, and the one behind the last
  FrameRate rate_;
  Lettering letters_;
};

}  // namespace kelto::host
