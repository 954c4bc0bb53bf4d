#include "host/jobs/deep_choice.h"

#include <algorithm>
#include <string>

#include "host/base/error.h"
#include "host/deep/shown_film.h"
#include "host/film/depth.h"
#include "host/plan/deep_plan.h"

namespace kelto::host {
namespace {

/// What of plan, kind and command line only deep frames have; empty for nothing.
std::string WhatIsDeep(const FilmKind& kind, const RenderPlan& plan, int32_t depth) {
  if (plan.transparent) return "--background none";
  if (plan.linearLight) return "--linear-light";
  if (depth > 8) return "--depth " + std::to_string(depth);
  if (kind.layout == PixelLayout::kRgba16) return std::string("--format ") + kind.name;
  return "";
}

/// The same of any of the plans.
std::string WhatIsDeep(const FilmKind& kind, std::span<const RenderPlan> plans, int32_t depth) {
  for (const RenderPlan& plan : plans) {
    if (std::string what = WhatIsDeep(kind, plan, depth); !what.empty()) return what;
  }
  return "";
}

bool IsTransparent(std::span<const RenderPlan> plans) {
  return std::any_of(plans.begin(), plans.end(),
                     [](const RenderPlan& plan) { return plan.transparent; });
}

}  // namespace

void CheckDepth(const FilmKind& kind, std::span<const RenderPlan> plans, int32_t depth,
                const FilmRequest& request) {
  DepthOf(kind, request.codec, {depth, 8, IsTransparent(plans), !request.hardware.empty()});
  const std::string what = WhatIsDeep(kind, plans, depth);
  if (what.empty()) return;
  for (const RenderPlan& plan : plans) {
    const std::string whose = plans.size() > 1 ? plan.photo + ": " : "";
    if (plan.transparent && !plan.over.empty()) {
      throw UsageError(whose + "--background none: the project has a video behind the photo");
    }
    const std::string lack = WhyNotDeep(plan);
    if (!lack.empty()) throw UsageError(whose + what + ": cannot be had with " + lack);
  }
}

void ChooseDepth(const FilmKind& kind, std::span<const RenderPlan> plans,
                 std::span<const Photo> photos, int32_t depth, FilmRequest& request) {
  int32_t bits = 8;
  for (const Photo& photo : photos) bits = std::max(bits, photo.bits);
  request.transparent = IsTransparent(plans);
  request.depth =
      DepthOf(kind, request.codec, {depth, bits, request.transparent, !request.hardware.empty()});
  const bool asked = !WhatIsDeep(kind, plans, depth).empty();
  request.deep = asked || AreDrawnDeep(plans, photos);
  if (!asked) return;
  for (const Photo& photo : photos) {
    if (photo.deepMemory == 0) {
      throw Error(photo.given + ": is too large to be read with all its bits; reduce it");
    }
  }
}

}  // namespace kelto::host
