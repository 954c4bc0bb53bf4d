// A show in a few lines, before it is made.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/effect/photo.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// A picture of a show: when it appears, and how long the fade to the next one takes, in frames.
struct PictureOfShow {
  const RenderPlan& plan;
  const Photo& photo;
  int32_t begin = 0, fade = 0;
};

/// Some lines for people on the show of these pictures, one at least, and a line on each; `frames`
/// is its length, `audio` its sound or empty. Throws Error, also when the command is interrupted.
std::string ShowSummaryText(const std::string& modulePath,
                            const std::vector<PictureOfShow>& pictures, int32_t frames,
                            const std::string& audio);

}  // namespace kelto::host
