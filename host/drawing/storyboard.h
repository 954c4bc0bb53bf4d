// A sheet that shows a film at a glance: the photo with the path of the view, and frames.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/effect/photo.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

struct StoryboardOptions {
  std::string file;     ///< its name, which ends in .png or .svg
  int32_t frames = 12;  ///< in the strip, at least 1
};

/// The sheet of a plan, coded as its file; `photo` is the plan's, opened. Throws Error.
std::string DrawStoryboard(const std::string& modulePath, const RenderPlan& plan,
                           const Photo& photo, const StoryboardOptions& options);

/// What the sheet says of photo and film, below the photo's name.
std::string StoryboardFacts(const RenderPlan& plan, const Photo& photo);

/// The frames of a strip of `count` out of `total`: the first, the last, and between them frames
/// that lie even; all of them when there are no more.
std::vector<int32_t> StripFrames(int32_t count, int32_t total);

}  // namespace kelto::host
