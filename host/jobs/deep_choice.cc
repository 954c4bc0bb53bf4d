#include "host/jobs/deep_choice.h"

#include <string>

#include "host/base/error.h"
#include "host/deep/deep_session.h"
#include "host/film/depth.h"

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

}  // namespace

void CheckDepth(const FilmKind& kind, const RenderPlan& plan, int32_t depth,
                const FilmRequest& request) {
  DepthOf(kind, request.codec, {depth, 8, plan.transparent});
  const std::string what = WhatIsDeep(kind, plan, depth);
  if (what.empty()) return;
#if defined(_WIN32)
  throw UsageError(what + ": on this system films have eight bits and no transparency");
#endif
  if (plan.transparent && !plan.over.empty()) {
    throw UsageError("--background none: the project has a video behind the photo");
  }
  const std::string lack = WhyNotDeep(plan);
  if (!lack.empty()) throw UsageError(what + ": cannot be had with " + lack);
}

void ChooseDepth(const FilmKind& kind, const RenderPlan& plan, const Photo& photo, int32_t depth,
                 FilmRequest& request) {
  request.depth = DepthOf(kind, request.codec, {depth, photo.bits, plan.transparent});
  const bool more = photo.bits > 8 || photo.transparent;
  request.deep = !WhatIsDeep(kind, plan, depth).empty() || (more && WhyNotDeep(plan).empty());
  request.transparent = plan.transparent;
  if (request.deep && photo.deepMemory == 0) {
    throw Error(photo.given + ": is too large to be read with all its bits; reduce it");
  }
}

void CheckEffectDraws(const FilmKind& kind, const RenderPlan& plan) {
  const std::string what = WhatIsDeep(kind, plan, 0);
  if (what.empty()) return;
  throw UsageError(what + ": is for films of one photo; use kelto render or batch");
}

}  // namespace kelto::host
